#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A JSON text read once, to be looked at: every value in one array, each container pointing at its members in
// another, strings and numbers left in the text until asked for. The file checks run it on every glTF opened,
// before Assimp reads the same text; Qt's document costs a UTF-16 copy of each string and an allocation per value,
// several times the reading itself.
class JsonTree
{
    enum class Kind : std::uint8_t { Null, Boolean, Number, String, Array, Object };
    // A run of bytes: of the text, or (for strings that had escapes) of the resolved copies.
    struct Span
    {
        std::uint32_t start = 0;
        std::uint32_t length = 0;
    };
    struct Node
    {
        Span value; // strings, numbers and words: their bytes; containers: their members in mMembers
        Span name;  // members of objects
        Kind kind = Kind::Null;
        bool resolvedValue = false;
        bool resolvedName = false;
    };

public:
    // A value of the tree, or the absence of one (what a missing member or an index out of range gives).
    class Value
    {
    public:
        Value() = default;
        bool Exists() const { return mNode != nullptr; }
        bool IsObject() const;
        bool IsArray() const;
        bool IsString() const;
        bool IsNumber() const;
        // Members of an object or items of an array; 0 for anything else.
        std::size_t Size() const;
        // The item of an array, or the value of an object's member, in the text's order.
        Value At(std::size_t index) const;
        // An object's first member of that name, as Assimp's JSON reader finds it when a name repeats.
        Value Member(std::string_view name) const;
        bool Has(std::string_view name) const { return Member(name).Exists(); }
        // A number's value (infinite beyond the largest double); the fallback for anything else.
        double Number(double fallback) const;
        // A string's text, escapes resolved; empty for anything else.
        std::string_view Text() const;

    private:
        friend class JsonTree;
        Value(const JsonTree* tree, const Node* node)
            : mTree(tree)
            , mNode(node)
        {
        }
        const JsonTree* mTree = nullptr;
        const Node* mNode = nullptr;
    };

    // Deeper nesting is refused, as Qt's reader does; Assimp's reader recurses once a level.
    static constexpr int MostNesting = 1024;

    explicit JsonTree(std::string_view text);
    JsonTree(const JsonTree&) = delete;
    JsonTree& operator=(const JsonTree&) = delete;

    bool IsValid() const { return mError.empty(); }
    // Why the text is not JSON ("unterminated string", ...), and the byte where that was found.
    const std::string& Error() const { return mError; }
    std::size_t ErrorOffset() const { return mErrorOffset; }
    // The document's value; absent when the text is not valid.
    Value Root() const;

private:
    class Reader;

    std::string_view Bytes(Span span, bool resolved) const;

    std::string mText;
    std::vector<Node> mNodes;
    std::vector<std::uint32_t> mMembers; // each container's members, contiguous
    std::string mResolved;               // strings that had escapes, resolved, one after the other
    std::string mError;
    std::size_t mErrorOffset = 0;
};
