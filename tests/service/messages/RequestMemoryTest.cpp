/// The memory of what is built from a request.
#include "support/AllocationCount.hpp"
#include "support/Expect.hpp"

#include <connector/service/messages/MessageService.hpp>
#include <connector/service/messages/ParsedRequest.hpp>
#include <connector/service/messages/TooManyElements.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::service::maxElementMemory;
using connector::service::maxRequestSize;
using connector::service::MessageService;
using connector::service::Outcome;
using connector::service::ParsedRequest;
using connector::service::parseRequest;
using connector::service::TooManyElements;

/// A request whose size is proportional to a number of elements.
struct Shape {
    const char* name;
    std::string beginning;
    std::string element;
    std::string end;
    bool hasNames = false; // each element is a member, with a name of its own

    std::string request(std::size_t count) const {
        std::string text = beginning;
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0)
                text += ',';
            if (hasNames)
                text += '"' + std::to_string(i) + "\":";
            text += element;
        }
        return text + end;
    }

    /// @return of elements in a text of 1 MiB
    std::size_t largestCount() const {
        return (maxRequestSize - beginning.size() - end.size()) /
               (element.size() + 1 + (hasNames ? 10 : 0));
    }
};

Shape arrayOf(const char* name, const std::string& element) {
    return {name, R"({"message":{"value":{"value":[)", element, "]}}}"};
}

const Shape shapes[] = {
    arrayOf("numbers", "1"),
    arrayOf("fractions", "0.5"),
    arrayOf("long numbers", "99999999999999999999"),
    arrayOf("booleans", "true"),
    arrayOf("nulls", "null"),
    arrayOf("empty strings", "\"\""),
    arrayOf("short strings", '"' + std::string(15, 'x') + '"'),
    arrayOf("strings", '"' + std::string(16, 'x') + '"'),
    arrayOf("longer strings", '"' + std::string(100, 'x') + '"'),
    arrayOf("escapes", R"("\u20ac\u20ac\u20ac\u20ac\u20ac\u20ac")"),
    arrayOf("empty arrays", "[]"),
    arrayOf("arrays", "[1]"),
    arrayOf("arrays of strings", "[\"" + std::string(20, 'x') + "\"]"),
    arrayOf("nested arrays", "[[[[[[[[]]]]]]]]"),
    arrayOf("empty objects", "{}"),
    arrayOf("objects", R"({"a":1})"),
    arrayOf("objects with long names", R"({"a long name of a member":"a longer value, too"})"),
    {"members", R"({"message":{"key":{)", "1", "}}}", true},
    {"empty members", R"({"message":{"key":{)", "null", "}}}", true},
    {"keys", R"({"message":{"keys":[)", "\"a\"", "]}}"},
    {"numbers beside a long text",
     R"({"message":{"key":")" + std::string(500000, 'x') + R"(","value":{"value":[)", "1", "]}}}"},
};

struct Usage {
    bool isRead;
    std::ptrdiff_t held; // by the objects of the request
    std::ptrdiff_t peak; // while it was parsed
};

Usage usageOf(const std::string& text) {
    test::takePeakOfAllocatedBytes();
    const std::ptrdiff_t before = test::allocatedBytes();
    const ParsedRequest request = parseRequest(text);
    return {request.excess == ParsedRequest::Excess::None, test::allocatedBytes() - before,
            test::takePeakOfAllocatedBytes() - before};
}

/// @return nearly the largest request of the shape that is not refused
std::string largestRequest(const Shape& shape) {
    std::size_t accepted = 0;
    std::size_t refused = shape.largestCount() + 1;
    while (refused - accepted > 1 + accepted / 200) {
        const std::size_t count = (accepted + refused) / 2;
        (usageOf(shape.request(count)).isRead ? accepted : refused) = count;
    }
    return shape.request(accepted);
}

constexpr auto limit = static_cast<std::ptrdiff_t>(maxElementMemory);
constexpr auto parserBuffers = static_cast<std::ptrdiff_t>(2 * maxRequestSize);

TEST(RequestMemory, TheObjectsOfARequestStayWithinTheLimit) {
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        const Usage usage = usageOf(largestRequest(shape));
        EXPECT_TRUE(usage.isRead);
        EXPECT_LE(usage.held, limit);
        EXPECT_LE(usage.peak, limit + parserBuffers);
    }
}

TEST(RequestMemory, TextsOfAnyLengthAreReadWithinTheLimit) {
    const std::string text = '"' + std::string(maxRequestSize - 100, 'x') + '"';
    const std::string digits(maxRequestSize - 100, '9');
    for (const std::string& request :
         {R"({"message":{"key":)" + text + "}}", R"({"message":{"key":[)" + text + "]}}",
          R"({"message":{"key":{)" + text + ":1}}}", R"({"message":{"order":)" + digits + "}}",
          R"({"id":)" + text + "}", R"({"x":)" + text + "}", "{" + text + ":1}"}) {
        SCOPED_TRACE(request.substr(0, 20));
        const Usage usage = usageOf(request);
        EXPECT_TRUE(usage.isRead);
        EXPECT_LE(usage.held, limit);
        EXPECT_LE(usage.peak, limit + parserBuffers);
    }
}

TEST(RequestMemory, MembersThatNobodyReadsTakeNone) {
    for (const char* beginning :
         {R"({"x":[)", R"({"id":[)", R"({"message":[)", R"({"message":{"x":[)",
          R"({"message":{"value":[)", R"({"message":{"value":{"x":[)", R"({"message":{"order":[)",
          R"({"message":{"readOnly":[)"}) {
        SCOPED_TRACE(beginning);
        Shape shape{"", beginning, "{}", "]"};
        for (const char byte : shape.beginning)
            shape.end += byte == '{' ? "}" : "";
        const Usage usage = usageOf(shape.request(shape.largestCount()));
        EXPECT_TRUE(usage.isRead);
        EXPECT_LE(usage.peak, parserBuffers);
    }
}

TEST(RequestMemory, TooManyElementsAreAFailureWithTheId) {
    const Shape shape = arrayOf("empty objects", "{}");
    const std::string tooMany = shape.request(100000);
    const std::string beginning = tooMany.substr(0, tooMany.size() - 1); // without the last brace
    const ParsedRequest request = parseRequest(beginning + R"(,"id":7})");
    EXPECT_EQ("7", request.id);
    EXPECT_TRUE(request.object.isNull());
    test::expectThrows<TooManyElements>(
        "A request has too many elements: they would take more than 4 MiB of memory",
        [&] { request.content(); });
    // What follows is still checked.
    EXPECT_THROW(parseRequest(beginning + ",}"), std::invalid_argument);
    const std::string deep = std::string(100, '[') + std::string(100, ']');
    EXPECT_EQ(ParsedRequest::Excess::Nesting,
              parseRequest(beginning + ",\"x\":" + deep + "}").excess);
}

/// @return the largest request that sets an array of this type
std::string setRequest(const std::string& type, const std::string& element) {
    return largestRequest(
        {"elements",
         R"({"type":"connector/configuration/ConfigurationSet","message":{"key":"k","value":{"type":")" +
             type + R"(","value":[)",
         element, "]}}}"});
}

TEST(RequestMemory, ARequestIsExecutedWithLittleMore) {
    const MessageService service(std::make_shared<ConfigurationImpl>());
    const std::pair<const char*, const char*> arrays[] = {
        {"intArray", "1"},    {"boolArray", "true"},   {"doubleArray", "0.1"},
        {"intArray", "null"}, {"stringArray", "\"\""}, {"ustringArray", "\"123456789012345\""},
        {"stringArray", "1"}, {"stringArray", "{}"},   {"stringArray", "null"}};
    for (const auto& [type, element] : arrays) {
        SCOPED_TRACE(std::string(type) + " of " + element);
        const std::string request = setRequest(type, element);
        test::takePeakOfAllocatedBytes();
        const std::ptrdiff_t before = test::allocatedBytes();
        EXPECT_EQ(Outcome::Done, service.reply(request).outcome);
        const std::ptrdiff_t peak = test::takePeakOfAllocatedBytes() - before;
        EXPECT_LE(peak, 4 * limit);
    }
}

} // namespace
