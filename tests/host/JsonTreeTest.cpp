#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "GltfCheck.h"
#include "JsonTree.h"

namespace {

TEST(JsonTreeTest, ReadsMembersItemsNumbersAndStrings)
{
    const JsonTree tree(R"( {"accessors":[{"count":3,"min":[-1.5e2,0.25]},{"name":"a\"b\\c\u00e9\ud83d\ude00"}],
        "count":7,"count":9,"ok":true,"none":null,"s\u0074ride":12} )");
    ASSERT_TRUE(tree.IsValid()) << tree.Error();
    const JsonTree::Value root = tree.Root();
    ASSERT_TRUE(root.IsObject());
    EXPECT_EQ(root.Size(), 6u);
    // A repeated name gives its first value, as Assimp's reader sees it.
    EXPECT_EQ(root.Member("count").Number(0), 7);
    // Escapes are resolved in names as in values.
    EXPECT_EQ(root.Member("stride").Number(0), 12);
    EXPECT_EQ(root.At(5).Number(0), 12);

    const JsonTree::Value accessors = root.Member("accessors");
    ASSERT_TRUE(accessors.IsArray());
    EXPECT_EQ(accessors.Size(), 2u);
    const JsonTree::Value min = accessors.At(0).Member("min");
    EXPECT_EQ(min.At(0).Number(0), -150);
    EXPECT_EQ(min.At(1).Number(0), 0.25);
    EXPECT_EQ(accessors.At(1).Member("name").Text(), "a\"b\\c\xc3\xa9\xf0\x9f\x98\x80");

    // What is not there, or not of the kind asked for, gives the fallback.
    EXPECT_FALSE(accessors.At(2).Exists());
    EXPECT_FALSE(root.Member("missing").Exists());
    EXPECT_EQ(root.Member("ok").Number(-1), -1);
    EXPECT_TRUE(root.Member("none").Exists());
    EXPECT_EQ(root.Member("accessors").Text(), "");
    EXPECT_EQ(min.Member("count").Number(-1), -1);
    EXPECT_EQ(root.Member("count").Size(), 0u);
}

TEST(JsonTreeTest, NumbersBeyondADoubleReadAsInfinityOrZero)
{
    const JsonTree tree(
        "[1e400,-1e400,1e-400,0.00000000000000000000000000000000000000000000000000000000000000000000000000000000000"
        "0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
        "0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
        "0000000000000000000000000000000000000000000001,1e99999999999999999999,-0,1E+2]");
    ASSERT_TRUE(tree.IsValid()) << tree.Error();
    const JsonTree::Value items = tree.Root();
    EXPECT_EQ(items.At(0).Number(0), HUGE_VAL);
    EXPECT_EQ(items.At(1).Number(0), -HUGE_VAL);
    EXPECT_EQ(items.At(2).Number(1), 0);
    EXPECT_EQ(items.At(3).Number(1), 0);
    EXPECT_EQ(items.At(4).Number(0), HUGE_VAL);
    EXPECT_EQ(items.At(5).Number(1), 0);
    EXPECT_EQ(items.At(6).Number(0), 100);
}

TEST(JsonTreeTest, RefusesWhatIsNotJsonAndSaysWhere)
{
    const struct
    {
        const char* text;
        const char* error;
        std::size_t offset;
    } cases[] = {
        {"", "illegal value", 0},
        {"{\"a\":1", "unterminated object", 6},
        {"[1,2", "unterminated array", 4},
        {"{\"a\" 1}", "missing name separator", 5},
        {"{1:2}", "missing member name", 1},
        {"[1 2]", "missing value separator", 3},
        {"[1,]", "illegal value", 3},
        {"{\"a\":\"b}", "unterminated string", 8},
        {"[\"a\tb\"]", "control character in string", 3},
        {"[\"\\x\"]", "illegal escape sequence", 3},
        {"[\"\\u12g4\"]", "illegal escape sequence", 3},
        {"[\"\\udc00\"]", "illegal escape sequence", 8},
        {"[\"\\ud83d x\"]", "illegal escape sequence", 8},
        {"[01]", "illegal number", 3},
        {"[1.]", "illegal number", 3},
        {"[1e+]", "illegal number", 4},
        {"[-]", "illegal number", 2},
        {"[tru]", "illegal value", 1},
        {"{} x", "garbage at the end of the document", 3},
    };
    for (const auto& c : cases)
    {
        const JsonTree tree(c.text);
        EXPECT_FALSE(tree.IsValid()) << c.text;
        EXPECT_EQ(tree.Error(), c.error) << c.text;
        EXPECT_EQ(tree.ErrorOffset(), c.offset) << c.text;
        EXPECT_FALSE(tree.Root().Exists()) << c.text;
    }
}

TEST(JsonTreeTest, NestingStopsAtItsLimitAndAByteOrderMarkIsSkipped)
{
    const auto nested = [](int depth) {
        return std::string(static_cast<std::size_t>(depth), '[') + std::string(static_cast<std::size_t>(depth), ']');
    };
    EXPECT_TRUE(JsonTree(nested(JsonTree::MostNesting)).IsValid());
    const JsonTree deep(nested(JsonTree::MostNesting + 1));
    EXPECT_EQ(deep.Error(), "too deeply nested document");
    EXPECT_EQ(deep.ErrorOffset(), static_cast<std::size_t>(JsonTree::MostNesting));
    // Far deeper than the limit: refused without going deeper itself.
    EXPECT_FALSE(JsonTree(std::string(1 << 20, '[')).IsValid());

    const JsonTree marked("\xEF\xBB\xBF{\"a\":[]}");
    ASSERT_TRUE(marked.IsValid()) << marked.Error();
    EXPECT_TRUE(marked.Root().Member("a").IsArray());
}

// glTF 1 keeps its objects by name where glTF 2 has arrays; references are names there.
TEST(GltfCheckTest, FollowsReferencesByNameAndReadsRepeatedNamesAsAssimpDoes)
{
    const auto document = [](int viewBytes) {
        return QStringLiteral(R"({"asset":{"version":"1.0"},
            "accessors":{"weights":{"bufferView":"view","componentType":5126,"count":4,"type":"VEC4"}},
            "bufferViews":{"view":{"buffer":"data","byteLength":%1}},
            "buffers":{"data":{"byteLength":64}}})")
            .arg(viewBytes)
            .toUtf8();
    };
    EXPECT_EQ(GltfCheck::Problem(document(64)), QString());
    EXPECT_EQ(GltfCheck::Problem(document(63)), "a glTF accessor reads past its buffer view");
    EXPECT_EQ(GltfCheck::Problem(document(65)), "a glTF buffer view lies past its buffer");
    // Assimp reads the first of a repeated name; a harmless second one must not hide it.
    EXPECT_EQ(GltfCheck::Problem(document(64).replace("\"count\":4", "\"count\":5,\"count\":4")),
        "a glTF accessor reads past its buffer view");
    EXPECT_EQ(GltfCheck::Problem("{\"asset\":{}, ]"),
        "its glTF JSON is damaged (missing member name at byte 13)");
}

} // namespace
