#include <connector/sources/detail/Options.hpp>

#include <connector/sources/detail/Vectors.hpp>

#include <string>
#include <unordered_set>
#include <utility>

namespace connector::sources::detail {

namespace {

using configuration::OptionValue;

/// Walks a document and keeps track of the name of the current value.
class Walk {
public:
    virtual ~Walk() = default;

    void object(const Node::Members& members, bool isTop) {
        const std::size_t length = name.size();
        for (const Member& member : members) {
            if (!isTop)
                name += '.';
            name += member.key;
            value(*member.value, member.place);
            name.resize(length);
        }
    }

protected:
    /// @return whether to descend into the value
    virtual bool visit(const Node& node, Place place) = 0;

    std::string name;

private:
    void value(const Node& node, Place place) {
        if (!visit(node, place))
            return;
        if (const auto* members = std::get_if<Node::Members>(&node.content))
            object(*members, false);
        else if (const auto* elements = std::get_if<Node::Elements>(&node.content))
            array(*elements);
    }

    void array(const Node::Elements& elements) {
        const std::size_t length = name.size();
        for (std::size_t i = 0; i < elements.size(); ++i) {
            name += '.';
            name += std::to_string(i);
            value(*elements[i], elements[i]->place);
            name.resize(length);
        }
    }
};

/// Looks for the first occurrence of a name.
class Search : public Walk {
public:
    explicit Search(std::string newWanted) : wanted(std::move(newWanted)) {}

    Place found;

protected:
    bool visit(const Node& node, Place place) override {
        if (found.line == 0 && name == wanted)
            found = place;
        return found.line == 0 && wanted.compare(0, name.size(), name) == 0 &&
               !vectorOf(node).has_value();
    }

private:
    const std::string wanted;
};

/// Collects the options.
class Collection : public Walk {
public:
    explicit Collection(const Node::Members& newTop) : top(newTop) {}

    Table options;

protected:
    bool visit(const Node& node, Place place) override {
        if (const auto* scalar = std::get_if<OptionValue>(&node.content)) {
            add(*scalar, place);
            return false;
        }
        if (std::optional<OptionValue> vector = vectorOf(node)) {
            add(std::move(*vector), place);
            return false;
        }
        if (options.count(name) != 0 || !withoutValue.insert(name).second)
            refuse(place);
        return true;
    }

private:
    void add(OptionValue value, Place place) {
        if (withoutValue.count(name) != 0 || !options.emplace(name, std::move(value)).second)
            refuse(place);
    }

    /// The walk may differ from the order of the file: a TOML table can be continued further down.
    [[noreturn]] void refuse(Place place) const {
        Search search(name);
        search.object(top, true);
        throw DocumentError(std::max(place, search.found), "The key stands here a second time");
    }

    const Node::Members& top;
    std::unordered_set<std::string> withoutValue; // names of objects, arrays and nulls
};

} // namespace

Table optionsOf(const Document& document) {
    if (document.top == nullptr)
        return {};
    const auto* const members = std::get_if<Node::Members>(&document.top->content);
    if (members == nullptr)
        throw DocumentError(document.top->place, "The top of the document is no object");
    Collection collection(*members);
    collection.object(*members, true);
    return std::move(collection.options);
}

} // namespace connector::sources::detail
