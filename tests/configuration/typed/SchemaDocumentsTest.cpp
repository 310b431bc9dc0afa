/// The documents of a schema: help, sample file, JSON Schema.
#include "Net.hpp"
#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <limits>
#include <random>
#include <tuple>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::Net;

TEST(SchemaHelp, IsAligned) {
    EXPECT_EQ("net.port          int                   8080        TCP port to listen on\n"
              "net.host          string                localhost   address to listen on\n"
              "net.patience      duration              500ms       how long a request may take\n"
              "net.peers         stringArray           (required)  addresses of the other nodes\n"
              "net.mode          one of plain, secure  plain       of connections\n"
              "net.password      string                ******      of the administrator\n"
              "net.limits.size   byte size             64KiB       of a request\n"
              "net.limits.count  int                   10          of requests\n",
              test::netSchema().helpText());
}

TEST(SchemaSample, HasDescriptionsDefaultsAndComments) {
    struct Few {
        int port = 80;
        std::string name;
        std::filesystem::path file;
        double ratio = HUGE_VAL;
    };
    const auto few = OptionSchema<Few>("few")
                         .option("port", &Few::port, "the port")
                         .required("name", &Few::name, "two\nlines")
                         .option("file", &Few::file, "where")
                         .option("ratio", &Few::ratio, "how much");
    EXPECT_EQ("# the port (int)\nfew.port=80\n\n"
              "# two\n# lines (string, required)\n# few.name=\n\n"
              "# where (path)\n# few.file=\n\n"
              "# how much (double)\n# few.ratio=\n",
              few.sampleProperties());
}

/// One member of each type.
struct Everything {
    bool flag = false;
    int number = 0;
    unsigned count = 0;
    std::int8_t tiny = 0;
    std::uint64_t huge = 0;
    double ratio = 0;
    float rough = 0;
    std::string text;
    std::u16string wide;
    std::chrono::nanoseconds brief{};
    std::chrono::duration<double> rounded{};
    std::chrono::duration<float, std::milli> roughly{};
    std::chrono::hours lasting{};
    ByteSize size;
    std::filesystem::path path = "/";
    test::Mode mode = test::Mode::Plain;
    std::vector<bool> flags;
    std::vector<double> ratios;
    std::vector<std::string> texts;
    std::vector<std::u16string> wides;
    std::vector<ByteSize> sizes;

    auto all() const {
        return std::tie(flag, number, count, tiny, huge, ratio, rough, text, wide, brief, rounded,
                        roughly, lasting, size, path, mode, flags, ratios, texts, wides, sizes);
    }
};

/// Settings whose defaults a test can choose.
struct Chosen {
    inline static Everything defaults;

    Everything everything = defaults;
    int odd = 0;
};

OptionSchema<Chosen> chosenSchema() {
    using E = Everything;
    const auto inner = OptionSchema<E>()
                           .option("flag", &E::flag, "a flag")
                           .option("number", &E::number, "an int")
                           .option("count", &E::count, "a count")
                           .option("tiny", &E::tiny, "")
                           .option("huge", &E::huge, "")
                           .option("ratio", &E::ratio, "")
                           .option("rough", &E::rough, "")
                           .option("text", &E::text, "any \xC3\xA4 text")
                           .option("wide", &E::wide, "")
                           .option("brief", &E::brief, "")
                           .option("rounded", &E::rounded, "")
                           .option("roughly", &E::roughly, "")
                           .option("lasting", &E::lasting, "")
                           .option("size", &E::size, "")
                           .option("path", &E::path, "")
                           .option("mode", &E::mode, "")
                           .option("flags", &E::flags, "")
                           .option("ratios", &E::ratios, "")
                           .option("texts", &E::texts, "")
                           .option("wides", &E::wides, "")
                           .option("sizes", &E::sizes, "");
    return OptionSchema<Chosen>()
        .option("!odd =\\key:", &Chosen::odd, "")
        .group("all", &Chosen::everything, inner);
}

/// Random values, the awkward ones more often than others.
class Values {
public:
    explicit Values(std::uint64_t seed) : random(seed) {}

    std::uint64_t number() { return random() >> random() % 64; }
    bool flag() { return random() % 2 == 0; }

    double ratio() {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return flag() || !std::isfinite(value) ? static_cast<double>(number()) / 1000 : value;
    }

    std::string text() {
        const std::string awkward = "\\,= :\t\n\r!#ue\0\x7F\xFF"s;
        std::string text;
        for (auto length = random() % 8; length > 0; --length)
            text += flag() ? awkward[random() % awkward.size()] : static_cast<char>(random());
        return text;
    }

    std::u16string wide() {
        std::u16string text;
        for (auto length = random() % 8; length > 0; --length)
            text += flag() ? u"\U0001F600"
                           : std::u16string(1, static_cast<char16_t>(random() % 0xD800));
        return text;
    }

    template <typename Make>
    auto list(Make make) {
        std::vector<decltype(make())> list;
        for (auto length = random() % 4; length > 0; --length)
            list.push_back(make());
        return list;
    }

    Everything everything() {
        Everything all;
        all.flag = flag();
        all.number = static_cast<int>(number());
        all.count = static_cast<unsigned>(number());
        all.tiny = static_cast<std::int8_t>(number());
        all.huge = number();
        all.ratio = ratio();
        all.rough = static_cast<float>(number()) / 1000;
        all.text = text();
        all.wide = wide();
        all.brief = std::chrono::nanoseconds(static_cast<std::int64_t>(number()));
        all.rounded = std::chrono::duration<double>(ratio());
        all.roughly = std::chrono::duration<float, std::milli>(static_cast<float>(number()) / 7);
        all.lasting = std::chrono::hours(static_cast<std::int32_t>(number()));
        all.size = ByteSize{number()};
        all.path = "/" + std::to_string(number());
        all.mode = flag() ? test::Mode::Plain : test::Mode::Secure;
        all.flags = list([this] { return flag(); });
        all.ratios = list([this] { return ratio(); });
        all.texts = list([this] { return text(); });
        all.wides = list([this] { return wide(); });
        all.sizes = list([this] { return ByteSize{number()}; });
        return all;
    }

private:
    std::mt19937_64 random;
};

TEST(SchemaSample, WritesDurationsOfAnyPeriod) {
    struct Periods {
        std::chrono::duration<std::int64_t, std::pico> fine{1500};
        std::chrono::duration<std::int64_t, std::ratio<1, 3>> third{1};
        std::chrono::duration<std::int64_t, std::ratio<1, 3>> thirds{-6};
        std::chrono::duration<std::int64_t, std::ratio<86400>> days =
            std::chrono::duration<std::int64_t, std::ratio<86400>>::min();
    };
    EXPECT_EQ("# (duration)\nfine=1.5ns\n\n# (duration)\n# third=\n\n# (duration)\nthirds=-2s\n\n"
              "# (duration)\ndays=-9223372036854775808d\n",
              OptionSchema<Periods>()
                  .option("fine", &Periods::fine, "")
                  .option("third", &Periods::third, "")
                  .option("thirds", &Periods::thirds, "")
                  .option("days", &Periods::days, "")
                  .sampleProperties());
}

TEST(SchemaSample, ReadsBackToTheSameSettings) {
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    Values values(seed);
    const test::TemporaryDirectory directory;
    for (int round = 0; round < 500; ++round) {
        Chosen::defaults = values.everything();
        const Everything expected = Chosen::defaults;
        const auto schema = chosenSchema();
        const std::string sample = schema.sampleProperties();
        Chosen::defaults = Everything();
        const auto file = directory.write("sample.properties", sample);
        const auto configuration = std::make_shared<ConfigurationImpl>();
        configuration->addPropertyFileSource("sample", "", 0, true, file.u16string()).get();
        ASSERT_EQ(22u, configuration->keys().get().size()) << sample;
        ASSERT_TRUE(expected.all() ==
                    schema.read(*configuration, UnknownKeys::Refused).everything.all())
            << sample;
    }
}

} // namespace
