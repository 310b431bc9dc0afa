// Tests a source with the installed kit.
#include <connector/sources/TableSource.hpp>
#include <connector/testing/SourceConformance.hpp>

static connector::testing::SourceFactory factory() {
    using Table = connector::testing::SourceFactory::Table;
    return {[](Table table) {
                return std::make_shared<connector::sources::TableSource>(std::move(table));
            },
            nullptr, false};
}

CONNECTOR_SOURCE_CONFORMANCE(TableSource, factory());
