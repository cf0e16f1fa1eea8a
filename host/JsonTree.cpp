#include "JsonTree.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace
{
// Whether a number too far from 1 to read is near zero (it reads as 0) rather than beyond the largest double.
bool TooSmall(std::string_view number)
{
    constexpr long Decisive = 100000; // beyond any digits a text could hold against it
    const std::size_t e = number.find_first_of("eE");
    long exponent = 0;
    if (e != std::string_view::npos)
    {
        std::string_view text = number.substr(e + 1);
        if (text.front() == '+')
            text.remove_prefix(1);
        if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec != std::errc())
            return text.front() == '-';
        if (exponent > Decisive || exponent < -Decisive)
            return exponent < 0;
    }
    const std::string_view digits = number.substr(0, e);
    const std::size_t lead = digits.find_first_of("123456789");
    if (lead == std::string_view::npos)
        return true;
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const long magnitude = lead < point ? static_cast<long>(point - lead - 1) : -static_cast<long>(lead - point);
    return magnitude + exponent < 0;
}
} // namespace

class JsonTree::Reader
{
public:
    explicit Reader(JsonTree& tree)
        : mTree(tree)
        , mText(tree.mText)
    {
    }

    void Read()
    {
        if (mText.substr(0, 3) == "\xEF\xBB\xBF")
            mAt = 3; // a byte order mark, as editors on some systems write
        SkipSpace();
        if (ReadValue(0) == Failed)
            return;
        SkipSpace();
        if (mAt != mText.size())
            Fail("garbage at the end of the document");
    }

private:
    static constexpr std::uint32_t Failed = std::numeric_limits<std::uint32_t>::max();

    std::uint32_t Fail(const char* why)
    {
        if (mTree.mError.empty())
        {
            mTree.mError = why;
            mTree.mErrorOffset = mAt;
        }
        return Failed;
    }

    bool Refuse(const char* why)
    {
        Fail(why);
        return false;
    }

    bool AtEnd() const { return mAt >= mText.size(); }
    char Peek() const { return AtEnd() ? '\0' : mText[mAt]; }

    void SkipSpace()
    {
        while (!AtEnd() && (mText[mAt] == ' ' || mText[mAt] == '\n' || mText[mAt] == '\r' || mText[mAt] == '\t'))
            ++mAt;
    }

    std::uint32_t Add(Kind kind, Span value = {}, bool resolved = false)
    {
        if (mTree.mNodes.size() >= Failed)
            return Fail("document too large");
        Node node;
        node.kind = kind;
        node.value = value;
        node.resolvedValue = resolved;
        mTree.mNodes.push_back(node);
        return static_cast<std::uint32_t>(mTree.mNodes.size() - 1);
    }

    static Span SpanOf(std::size_t start, std::size_t end)
    {
        return Span {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)};
    }

    std::uint32_t ReadValue(int depth)
    {
        switch (Peek())
        {
        case '{':
        case '[':
            return ReadContainer(depth + 1);
        case '"':
            return ReadStringValue();
        case 't':
            return ReadWord("true", Kind::Boolean);
        case 'f':
            return ReadWord("false", Kind::Boolean);
        case 'n':
            return ReadWord("null", Kind::Null);
        default:
            return ReadNumber();
        }
    }

    std::uint32_t ReadWord(std::string_view word, Kind kind)
    {
        if (mText.substr(mAt, word.size()) != word)
            return Fail("illegal value");
        mAt += word.size();
        return Add(kind, SpanOf(mAt - word.size(), mAt));
    }

    std::uint32_t ReadContainer(int depth)
    {
        if (depth > MostNesting)
            return Fail("too deeply nested document");
        const bool object = mText[mAt] == '{';
        const char close = object ? '}' : ']';
        const std::uint32_t index = Add(object ? Kind::Object : Kind::Array);
        if (index == Failed)
            return Failed;
        ++mAt;
        const std::size_t start = mPending.size();
        SkipSpace();
        bool more = Peek() != close;
        while (more)
        {
            SkipSpace();
            if (AtEnd())
                return Unterminated(object);
            Span name;
            bool resolved = false;
            if (object && (!ReadString(name, resolved) || !ReadNameSeparator()))
                return Failed;
            const std::uint32_t member = ReadValue(depth);
            if (member == Failed)
                return Failed;
            mTree.mNodes[member].name = name;
            mTree.mNodes[member].resolvedName = resolved;
            mPending.push_back(member);
            SkipSpace();
            if (AtEnd())
                return Unterminated(object);
            if (Peek() != ',' && Peek() != close)
                return Fail("missing value separator");
            more = Peek() == ',';
            if (more)
                ++mAt;
        }
        ++mAt;
        Close(index, start);
        return index;
    }

    std::uint32_t Unterminated(bool object) { return Fail(object ? "unterminated object" : "unterminated array"); }

    bool ReadNameSeparator()
    {
        SkipSpace();
        if (Peek() != ':')
            return Refuse("missing name separator");
        ++mAt;
        SkipSpace();
        return true;
    }

    // The container's members are the last ones read; they join the shared list in one piece.
    void Close(std::uint32_t index, std::size_t start)
    {
        mTree.mNodes[index].value = SpanOf(mTree.mMembers.size(), mTree.mMembers.size() + mPending.size() - start);
        mTree.mMembers.insert(mTree.mMembers.end(), mPending.begin() + static_cast<std::ptrdiff_t>(start),
            mPending.end());
        mPending.resize(start);
    }

    std::uint32_t ReadStringValue()
    {
        Span text;
        bool resolved = false;
        if (!ReadString(text, resolved))
            return Failed;
        return Add(Kind::String, text, resolved);
    }

    // Most strings have no escapes and stay where they are in the text; the others are resolved into a copy.
    bool ReadString(Span& text, bool& resolved)
    {
        if (Peek() != '"')
            return Refuse("missing member name");
        const std::size_t start = ++mAt;
        while (!AtEnd() && mText[mAt] != '"' && mText[mAt] != '\\' && static_cast<unsigned char>(mText[mAt]) >= 0x20)
            ++mAt;
        resolved = Peek() != '"';
        if (!resolved)
        {
            text = SpanOf(start, mAt++);
            return true;
        }
        std::string& copies = mTree.mResolved;
        const std::size_t first = copies.size();
        copies.append(mText.substr(start, mAt - start));
        if (!ReadEscapedRest(copies))
            return false;
        text = SpanOf(first, copies.size());
        return true;
    }

    bool ReadEscapedRest(std::string& out)
    {
        while (!AtEnd())
        {
            const char c = mText[mAt];
            if (c == '"')
            {
                ++mAt;
                return true;
            }
            if (static_cast<unsigned char>(c) < 0x20)
                return Refuse("control character in string");
            if (c != '\\')
            {
                out.push_back(c);
                ++mAt;
            }
            else if (!ReadEscape(out))
                return false;
        }
        return Refuse("unterminated string");
    }

    bool ReadEscape(std::string& out)
    {
        ++mAt; // the backslash
        const char c = Peek();
        static constexpr std::string_view From = "\"\\/bfnrt";
        static constexpr std::string_view To = "\"\\/\b\f\n\r\t";
        const std::size_t simple = From.find(c);
        if (c != '\0' && simple != std::string_view::npos)
        {
            out.push_back(To[simple]);
            ++mAt;
            return true;
        }
        char32_t code = 0;
        if (c != 'u' || !ReadCodeUnit(code))
            return Refuse("illegal escape sequence");
        if (code >= 0xDC00 && code <= 0xDFFF)
            return Refuse("illegal escape sequence");
        if (code >= 0xD800 && code <= 0xDBFF)
        {
            char32_t low = 0;
            if (!ReadLowSurrogate(low))
                return Refuse("illegal escape sequence");
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        AppendUtf8(out, code);
        return true;
    }

    bool ReadLowSurrogate(char32_t& low)
    {
        if (mText.substr(mAt, 2) != "\\u")
            return false;
        ++mAt;
        return ReadCodeUnit(low) && low >= 0xDC00 && low <= 0xDFFF;
    }

    // `u` and four hex digits, from the `u`.
    bool ReadCodeUnit(char32_t& code)
    {
        if (mText.size() - mAt < 5)
            return false;
        unsigned value = 0;
        const char* first = mText.data() + mAt + 1;
        const auto [end, error] = std::from_chars(first, first + 4, value, 16);
        if (error != std::errc() || end != first + 4)
            return false;
        code = value;
        mAt += 5;
        return true;
    }

    static void AppendUtf8(std::string& out, char32_t code)
    {
        if (code < 0x80)
            out.push_back(static_cast<char>(code));
        else if (code < 0x800)
            out += {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
        else if (code < 0x10000)
            out += {static_cast<char>(0xE0 | (code >> 12)), static_cast<char>(0x80 | ((code >> 6) & 0x3F)),
                static_cast<char>(0x80 | (code & 0x3F))};
        else
            out += {static_cast<char>(0xF0 | (code >> 18)), static_cast<char>(0x80 | ((code >> 12) & 0x3F)),
                static_cast<char>(0x80 | ((code >> 6) & 0x3F)), static_cast<char>(0x80 | (code & 0x3F))};
    }

    std::size_t SkipDigits()
    {
        const std::size_t start = mAt;
        while (!AtEnd() && mText[mAt] >= '0' && mText[mAt] <= '9')
            ++mAt;
        return mAt - start;
    }

    bool ReadFraction()
    {
        if (Peek() != '.')
            return true;
        ++mAt;
        return SkipDigits() > 0;
    }

    bool ReadExponent()
    {
        if (Peek() != 'e' && Peek() != 'E')
            return true;
        ++mAt;
        if (Peek() == '+' || Peek() == '-')
            ++mAt;
        return SkipDigits() > 0;
    }

    // Checked against the grammar here, read when asked for: most numbers of a file are never looked at.
    std::uint32_t ReadNumber()
    {
        const std::size_t start = mAt;
        if (Peek() == '-')
            ++mAt;
        const char lead = Peek();
        const std::size_t whole = SkipDigits();
        if (whole == 0 || (lead == '0' && whole > 1))
            return Fail(start == mAt ? "illegal value" : "illegal number");
        if (!ReadFraction() || !ReadExponent())
            return Fail("illegal number");
        return Add(Kind::Number, SpanOf(start, mAt));
    }

    JsonTree& mTree;
    std::string_view mText;
    std::size_t mAt = 0;
    std::vector<std::uint32_t> mPending; // members of the containers still open, innermost last
};

JsonTree::JsonTree(std::string_view text)
    : mText(text)
{
    if (text.size() >= std::numeric_limits<std::uint32_t>::max())
    {
        mError = "document too large";
        return;
    }
    mNodes.reserve(text.size() / 12); // glTF files spend about as much on each value
    Reader(*this).Read();
    if (!IsValid())
    {
        mNodes.clear();
        mMembers.clear();
    }
}

JsonTree::Value JsonTree::Root() const
{
    return Value(this, mNodes.empty() ? nullptr : &mNodes.front());
}

bool JsonTree::Value::IsObject() const
{
    return mNode != nullptr && mNode->kind == Kind::Object;
}

bool JsonTree::Value::IsArray() const
{
    return mNode != nullptr && mNode->kind == Kind::Array;
}

bool JsonTree::Value::IsString() const
{
    return mNode != nullptr && mNode->kind == Kind::String;
}

bool JsonTree::Value::IsNumber() const
{
    return mNode != nullptr && mNode->kind == Kind::Number;
}

std::size_t JsonTree::Value::Size() const
{
    return IsObject() || IsArray() ? mNode->value.length : 0;
}

JsonTree::Value JsonTree::Value::At(std::size_t index) const
{
    if (index >= Size())
        return Value(mTree, nullptr);
    return Value(mTree, &mTree->mNodes[mTree->mMembers[mNode->value.start + index]]);
}

JsonTree::Value JsonTree::Value::Member(std::string_view name) const
{
    if (!IsObject())
        return Value(mTree, nullptr);
    for (std::size_t index = 0; index < mNode->value.length; ++index)
    {
        const Node& member = mTree->mNodes[mTree->mMembers[mNode->value.start + index]];
        if (mTree->Bytes(member.name, member.resolvedName) == name)
            return Value(mTree, &member);
    }
    return Value(mTree, nullptr);
}

double JsonTree::Value::Number(double fallback) const
{
    if (!IsNumber())
        return fallback;
    const std::string_view text = mTree->Bytes(mNode->value, false);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range)
        return TooSmall(text) ? 0.0 : (text.front() == '-' ? -HUGE_VAL : HUGE_VAL);
    return error == std::errc() && end == text.data() + text.size() ? number : fallback;
}

std::string_view JsonTree::Value::Text() const
{
    return IsString() ? mTree->Bytes(mNode->value, mNode->resolvedValue) : std::string_view();
}

std::string_view JsonTree::Bytes(Span span, bool resolved) const
{
    return std::string_view(resolved ? mResolved : mText).substr(span.start, span.length);
}
