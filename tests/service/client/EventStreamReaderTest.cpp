/// The bytes of event streams.
#include <connector/service/client/EventStreamReader.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using connector::service::EventStreamReader;

/// @return each event as "TYPE|DATA|ID;"
std::string read(const std::string& text, std::size_t pieceSize) {
    EventStreamReader reader;
    std::string result;
    for (std::size_t begin = 0; begin < text.size(); begin += pieceSize) {
        reader.append(text.substr(begin, pieceSize));
        while (const auto event = reader.next())
            result += event->type + '|' + event->data + '|' + event->id + ';';
    }
    return result;
}

TEST(EventStreamReader, ReadsEventsHoweverTheyArrive) {
    const struct {
        int line;
        std::string text;
        const char* events;
    } rows[] = {
        {__LINE__, "data: a\n\n", "|a|;"},
        {__LINE__, "data:a\n\n", "|a|;"},
        {__LINE__, "data:  a\n\n", "| a|;"},
        {__LINE__, "data\n\n", "||;"},
        {__LINE__, "data: a\ndata: b\n\n", "|a\nb|;"},
        {__LINE__, "id: 1\ndata: a\n\ndata: b\n\n", "|a|1;|b|1;"},
        {__LINE__, "event: end\ndata: {}\n\ndata: b\n\n", "end|{}|;|b|;"},
        {__LINE__, "id: 1\r\ndata: a\r\n\r\ndata: b\r\n\r\n", "|a|1;|b|1;"},
        {__LINE__, "data: a\r\rdata: b\r\rx", "|a|;|b|;"},
        {__LINE__, ": comment\n\n:\n\ndata: a\n\n", "|a|;"},
        {__LINE__, "event: x\n\ndata: a\n\n", "|a|;"},
        {__LINE__, "retry: 5\nunknown\ndata: a\n\n", "|a|;"},
        {__LINE__, "data: a\n", ""},
        {__LINE__, "id: " + std::string(1025, '1') + "\ndata: a\n\n", "|a|;"},
        {__LINE__, std::string("id: 1\0\ndata: a\n\n", 16), "|a|;"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.events, read(row.text, 1));
        EXPECT_EQ(row.events, read(row.text, 3));
        EXPECT_EQ(row.events, read(row.text, row.text.size()));
    }
}

TEST(EventStreamReader, RefusesEndlessEvents) {
    const std::string piece(64 * 1024 * 1024, 'x');
    EventStreamReader reader;
    for (int i = 0; i < 4; ++i)
        reader.append(piece);
    EXPECT_THROW(reader.append("x"), std::length_error);
}

} // namespace
