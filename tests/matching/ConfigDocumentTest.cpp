#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QFile>
#include <QFileDevice>
#include <QTemporaryDir>
#include <QtGlobal>

#include <gtest/gtest.h>

#include <zelkin/ConfigDocument.h>

#include "MessageCapture.h"

#ifdef ZELKIN_UNDER_ASAN
#include <sanitizer/allocator_interface.h>
#endif

namespace
{
void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

// Resident memory in bytes, from /proc. Under ASan, whose redzones and quarantine swell that, the live heap.
qint64 ResidentBytes()
{
#ifdef ZELKIN_UNDER_ASAN
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#else
    QFile status("/proc/self/statm");
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = status.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toLongLong() * sysconf(_SC_PAGESIZE) : 0;
#endif
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class ConfigDocumentTest : public testing::Test
{
protected:
    QString Path(const QString& name) const { return mDir.filePath(name); }
    QTemporaryDir mDir;
};
} // namespace

TEST_F(ConfigDocumentTest, ValuesListsAndPairsRoundTripThroughAFile)
{
    ConfigDocument document;
    ASSERT_TRUE(document.WriteValue("name_match", "match_type", "Contains"));
    ASSERT_TRUE(document.WriteList("name_match", "delimiter_list", {"-", ".", ""}));
    ASSERT_TRUE(document.WritePairs("mirror_list", "mirror", {{"L_", "R_"}, {"lf", "rt"}}));
    ASSERT_TRUE(document.WriteBool("", "flag", true));
    EXPECT_TRUE(document.IsModified());
    ASSERT_TRUE(document.Save(Path("config.xml")));
    EXPECT_FALSE(document.IsModified());

    ConfigDocument loaded;
    ASSERT_TRUE(loaded.Load(Path("config.xml")));
    EXPECT_EQ(loaded.ReadValue("name_match", "match_type"), "Contains");
    EXPECT_EQ(loaded.ReadList("name_match", "delimiter_list"), QStringList({"-", ".", ""}));
    EXPECT_EQ(loaded.ReadPairs("mirror_list", "mirror"),
              (QList<ConfigDocument::Pair> {{"L_", "R_"}, {"lf", "rt"}}));
    EXPECT_TRUE(loaded.ReadBool("", "flag", false));
    EXPECT_EQ(loaded.Sections(), QStringList({"name_match", "mirror_list", "flag"}));
    EXPECT_FALSE(loaded.IsModified());
}

TEST_F(ConfigDocumentTest, MissingPiecesGiveTheDefault)
{
    ConfigDocument document;
    document.WriteList("s", "list", {"a"});
    EXPECT_EQ(document.ReadValue("s", "list", "fallback"), "fallback"); // key without a value attribute
    EXPECT_EQ(document.ReadValue("s", "other", "fallback"), "fallback");
    EXPECT_EQ(document.ReadValue("none", "list", "fallback"), "fallback");
    EXPECT_TRUE(document.ReadList("none", "list").isEmpty());
    EXPECT_FALSE(document.ReadBool("s", "list", false));
}

TEST_F(ConfigDocumentTest, WritingAKeyReplacesTheWholeElementAtTheEndOfItsSection)
{
    ConfigDocument document;
    document.WriteList("s", "first", {"1", "2", "3"});
    document.WriteValue("s", "second", "x");
    document.WriteValue("s", "first", "single");
    EXPECT_EQ(document.Keys("s"), QStringList({"second", "first"}));
    EXPECT_TRUE(document.ReadList("s", "first").isEmpty());
    EXPECT_EQ(document.ReadValue("s", "first"), "single");
}

TEST_F(ConfigDocumentTest, WritesWithFourSpaceIndentation)
{
    ConfigDocument document;
    document.WritePairs("mirror_list", "mirror", {{"a", "b"}});
    const QByteArray text = document.ToByteArray();
    EXPECT_TRUE(text.contains("\n    <mirror_list>\n        <mirror>\n            <item key=\"a\" value=\"b\"/>"))
        << text.constData();
}

TEST_F(ConfigDocumentTest, AwkwardNamesRoundTripUnchanged)
{
    const QStringList names = {QStringLiteral("a<b>&c"), QStringLiteral("say \"hi\" 'there'"),
                               QStringLiteral("  spaced  name "), QStringLiteral("mixamorig:LeftArm"),
                               QStringLiteral("左腕ＩＫ"), QStringLiteral("tab\tline\nbreak\r"), QStringLiteral("&amp;"),
                               QString::fromUcs4(U"\U0001F600 emoji")};
    ConfigDocument document;
    ASSERT_TRUE(document.WriteList("", "bones", names));
    ASSERT_TRUE(document.WriteValue("", "single", names[1]));
    ASSERT_TRUE(document.Save(Path("names.xml")));

    ConfigDocument loaded;
    ASSERT_TRUE(loaded.Load(Path("names.xml")));
    EXPECT_EQ(loaded.ReadList("", "bones"), names);
    EXPECT_EQ(loaded.ReadValue("", "single"), names[1]);
}

TEST_F(ConfigDocumentTest, RefusesWhatXmlCannotHold)
{
    ConfigDocument document;
    EXPECT_FALSE(document.WriteValue("has space", "k", "v"));
    EXPECT_FALSE(document.WriteValue("s", "1digit", "v"));
    EXPECT_FALSE(document.WriteValue("s", "k", QString(QChar(0x01))));
    EXPECT_FALSE(document.WriteList("s", "k", {QString(QChar(0xD800))})); // lone surrogate
    EXPECT_FALSE(document.WriteTable("s", "k", {"a", "a"}, {{"1", "2"}}));
    EXPECT_TRUE(document.IsEmpty());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ConfigDocumentTest, ItemTablesKeepEveryAttributeAndMissingOnesReadEmpty)
{
    ConfigDocument document;
    ASSERT_TRUE(document.LoadFromData("<config_root><match_list>"
                                      "<item key=\"Hips\" value=\"hip\" use_root=\"true\"/>"
                                      "<item value=\"spine\"/>"
                                      "</match_list></config_root>"));
    EXPECT_EQ(document.ReadTable("", "match_list", {"value", "use_root", "key"}),
              (QList<QStringList> {{"hip", "true", "Hips"}, {"spine", "", ""}}));
    const QByteArray written = document.ToByteArray();
    EXPECT_TRUE(written.contains("<item value=\"spine\"/>")) << written.constData();
}

TEST_F(ConfigDocumentTest, RepeatedEntriesKeepTheirOwnAttributesThroughOtherWrites)
{
    ConfigDocument document;
    ASSERT_TRUE(document.LoadFromData("<config_root><clip_list>"
                                      "<clip_path path=\"/a\" note=\"x\"/><clip_path path=\"/b\"/>"
                                      "</clip_list></config_root>"));
    ASSERT_TRUE(document.WriteValue("name_match", "match_type", "Contains"));
    const QByteArray written = document.ToByteArray();
    EXPECT_TRUE(written.contains("<clip_path path=\"/a\" note=\"x\"/>\n        <clip_path path=\"/b\"/>"))
        << written.constData();
    EXPECT_EQ(document.ReadEntries("clip_list", "clip_path", {"path", "note"}),
              (QList<QStringList> {{"/a", "x"}, {"/b", ""}}));

    // Rewriting them replaces every one, in row order, after the section's other keys.
    ASSERT_TRUE(document.WriteValue("clip_list", "other", "kept"));
    ASSERT_TRUE(document.WriteEntries("clip_list", "clip_path", {"path", "value"}, {{"/c", "1"}, {"/d", "2"}}));
    EXPECT_EQ(document.Keys("clip_list"), QStringList({"other", "clip_path", "clip_path"}));
    EXPECT_EQ(document.ReadEntries("clip_list", "clip_path", {"value", "path"}),
              (QList<QStringList> {{"1", "/c"}, {"2", "/d"}}));
    EXPECT_FALSE(document.WriteEntries("clip_list", "clip_path", {"path", "path"}, {{"/e", "/f"}}));
    ConfigDocument reloaded;
    ASSERT_TRUE(reloaded.LoadFromData(document.ToByteArray()));
    EXPECT_EQ(reloaded.ReadEntries("clip_list", "clip_path", {"path"}), (QList<QStringList> {{"/c"}, {"/d"}}));
}

TEST_F(ConfigDocumentTest, MissingAndEmptyFilesAreEmptyDocuments)
{
    ConfigDocument document;
    EXPECT_TRUE(document.Load(Path("absent.xml")));
    EXPECT_TRUE(document.IsEmpty());
    WriteFile(Path("empty.xml"), QByteArray());
    EXPECT_TRUE(document.Load(Path("empty.xml")));
    EXPECT_TRUE(document.IsEmpty());
    EXPECT_TRUE(document.ErrorString().isEmpty());
}

TEST_F(ConfigDocumentTest, MalformedFilesGiveTheDiagnosticAndAnEmptyDocument)
{
    const struct
    {
        QByteArray bytes;
        QString reason;
    } cases[] = {
        {"<config_root>\n  <a value=\"1\">\n</config_root>", "mismatched tag"},
        {"<config_root><a value=\"1\"/>", "truncated"},
        {"<other><a value=\"1\"/></other>", "wrong root"},
        {"   \n", "no element"},
        {"<config_root><k>" + [] {
             QByteArray items;
             for (int n = 0; n < 100; ++n)
                 items += "<item a" + QByteArray::number(n) + "=\"\"/>";
             return items;
         }() + "</k></config_root>",
         "an attribute name per item"},
        {"<config_root><a value=\"x\" value=\"y\"/></config_root>", "duplicate attribute"},
        {"<!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
         "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
         "<config_root><k value=\"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\"/></config_root>",
         "entity expansion"},
    };
    for (const auto& bad : cases)
    {
        SCOPED_TRACE(bad.reason.toStdString());
        WriteFile(Path("bad.xml"), bad.bytes);
        ConfigDocument document;
        document.WriteValue("s", "k", "old");
        MessageCapture messages;
        EXPECT_FALSE(document.Load(Path("bad.xml")));
        EXPECT_TRUE(document.IsEmpty());
        ASSERT_EQ(messages.Warnings().size(), 1);
        const QString& warning = messages.Warnings().first();
        EXPECT_TRUE(warning.startsWith("Error in parsing " + Path("bad.xml") + " ")) << warning.toStdString();
        EXPECT_TRUE(warning.contains(QRegularExpression(" at line \\d+ at column \\d+$"))) << warning.toStdString();
        EXPECT_EQ(document.ErrorString(), warning);
    }
}

TEST_F(ConfigDocumentTest, ParseErrorsNameTheLineAndColumn)
{
    MessageCapture messages;
    ConfigDocument document;
    EXPECT_FALSE(document.LoadFromData("<config_root>\n<a>\n</b>", "memory.xml"));
    EXPECT_TRUE(document.ErrorString().startsWith("Error in parsing memory.xml ")) << document.ErrorString().toStdString();
    EXPECT_TRUE(document.ErrorString().endsWith(" at line 3 at column 4")) << document.ErrorString().toStdString();
}

TEST_F(ConfigDocumentTest, ContentBelowKeysIsIgnoredButDoesNotBreakTheDocument)
{
    ConfigDocument document;
    ASSERT_TRUE(document.LoadFromData("<config_root><s><k value=\"v\"><deep><deeper/></deep>"
                                      "<item value=\"1\"><nested value=\"2\"/></item></k></s>text</config_root>"));
    EXPECT_EQ(document.ReadValue("s", "k"), "v");
    EXPECT_EQ(document.ReadList("s", "k"), QStringList({"1"}));
}

TEST_F(ConfigDocumentTest, FilesOverTheLimitAreRefusedBeforeParsing)
{
    const QString path = Path("huge.xml");
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.write("<config_root>"));
        ASSERT_TRUE(file.resize(ConfigDocument::MaxFileSize + 1)); // sparse: the tail is never read
    }
    MessageCapture messages;
    ConfigDocument document;
    EXPECT_FALSE(document.Load(path));
    EXPECT_TRUE(document.ErrorString().contains("64 MiB")) << document.ErrorString().toStdString();
    EXPECT_FALSE(document.ErrorString().startsWith("Error in parsing"));
    EXPECT_EQ(messages.Warnings().size(), 1);
    EXPECT_TRUE(document.IsEmpty());

    EXPECT_FALSE(document.LoadFromData(QByteArray(ConfigDocument::MaxFileSize + 1, ' ')));
    EXPECT_TRUE(document.ErrorString().contains("64 MiB"));
}

TEST_F(ConfigDocumentTest, AMillionItemsLoadCompactly)
{
    constexpr int count = 1000000;
    QByteArray bytes = "<config_root>\n    <bones>\n";
    bytes.reserve(40 * count);
    for (int n = 0; n < count; ++n)
        bytes += "        <item value=\"bone_" + QByteArray::number(n) + "\"/>\n";
    bytes += "    </bones>\n</config_root>\n";
    WriteFile(Path("million.xml"), bytes);
    bytes.clear();
    bytes.squeeze();

    const qint64 residentBefore = ResidentBytes();
    ConfigDocument document;
    ASSERT_TRUE(document.Load(Path("million.xml")));
    const qint64 growth = ResidentBytes() - residentBefore;
    ASSERT_EQ(document.ItemCount("", "bones"), count);
    // The text alone is 22 MB as UTF-16; a heap object per item and attribute would need several times that.
    EXPECT_LT(growth, qint64(60) << 20) << growth;
    const QStringList values = document.ReadList("", "bones");
    EXPECT_EQ(values.first(), "bone_0");
    EXPECT_EQ(values.last(), "bone_999999");
    const QByteArray saved = document.ToByteArray();
    EXPECT_EQ(saved.count("<item "), count);
}

TEST_F(ConfigDocumentTest, AFailedSaveKeepsTheOldFileAndSaysWhy)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions do not stop the superuser; see the full-disk case";
    const QString folder = Path("locked");
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString path = folder + "/config.xml";
    const QByteArray old = "<config_root><s><k value=\"old\"/></s></config_root>";
    WriteFile(path, old);
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);

    ConfigDocument document;
    document.WriteValue("s", "k", "new");
    EXPECT_FALSE(document.Save(path));
    EXPECT_TRUE(document.ErrorString().contains(path)) << document.ErrorString().toStdString();
    EXPECT_TRUE(document.IsModified());
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(ReadFile(path), old);
}

TEST_F(ConfigDocumentTest, AWriteThatRunsOutOfSpaceKeepsTheOldFile)
{
    const QString path = Path("config.xml");
    const QByteArray old = "<config_root><s><k value=\"old\"/></s></config_root>";
    WriteFile(path, old);
    ConfigDocument document;
    document.WriteList("s", "k", QStringList(2000, QStringLiteral("a long enough bone name")));

    // A file size limit makes the write fail the way a full disk does.
    struct rlimit previous;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &previous), 0);
    const sighandler_t previousHandler = signal(SIGXFSZ, SIG_IGN);
    struct rlimit limited = previous;
    limited.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool saved = document.Save(path);
    setrlimit(RLIMIT_FSIZE, &previous);
    signal(SIGXFSZ, previousHandler);

    EXPECT_FALSE(saved);
    EXPECT_TRUE(document.ErrorString().contains(path)) << document.ErrorString().toStdString();
    EXPECT_EQ(ReadFile(path), old);
    EXPECT_EQ(QDir(mDir.path()).entryList(QDir::Files), QStringList({"config.xml"})); // no temporary left behind
}
