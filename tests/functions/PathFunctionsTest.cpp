// The eight path functions on literal arguments: the normal case of each and the
// odd results that models depend on.
#include "functions/APCFun.h"
#include "functions/APCFun_AppendSuffix.h"
#include "functions/APCFun_ReplaceDirectory.h"
#include "functions/APCFun_ReplaceExtension.h"
#include "functions/APCFun_ReplaceSuffix.h"
#include "functions/APCFun_SelectDirectory.h"
#include "functions/APCFun_SelectDirectory2.h"
#include "functions/APCFun_SubDirectory.h"
#include "functions/APCFun_UnionFilePath.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Plugin;

namespace {

// The value of text, or "<null>" when it doesn't parse.
std::string Eval(const QString& text)
{
    std::unique_ptr<APCFun> fun(APCFun::Create(text));
    return fun ? fun->Evaluate().toStdString() : std::string("<null>");
}

TEST(PathFunctions, Values)
{
    struct Case
    {
        const char* name;
        QString text;
        QString value;
    };
    const Case cases[] = {
        {"append: before the extension", "$AppendSuffix('c:/test/x.tif', '_a')", "c:/test/x_a.tif"},
        {"append: last extension only", "$AppendSuffix('c:/test/x.tar.gz', '_a')", "c:/test/x.tar_a.gz"},
        {"append: no extension, before the last character", "$AppendSuffix('c:/test/x', '_a')", "c:/test/_ax"},
        {"append: a dot in a directory is no extension", "$AppendSuffix('c:/a.b/x', '_a')", "c:/a.b/_ax"},
        {"append: no normalising", "$AppendSuffix('c:\\\\t\\\\x.tif', '_a')", "c:\\\\t\\\\x_a.tif"},

        {"extension: replaced, dot kept", "$ReplaceExtension('c:/test/x.tif', 'xml')", "c:/test/x.xml"},
        {"extension: none, appended bare", "$ReplaceExtension('c:/test/x', 'xml')", "c:/test/xxml"},
        {"extension: leading dot doubles", "$ReplaceExtension('c:/test/x.tif', '.xml')", "c:/test/x..xml"},

        {"suffix: help example", "$ReplaceSuffix('c:/test/n_abc.tif', '_abc', '_xyz')", "c:/test/n_xyz.tif"},
        {"suffix: whole path, every occurrence", "$ReplaceSuffix('c:/abc/n_abc.tif', 'abc', 'xyz')", "c:/xyz/n_xyz.tif"},
        {"suffix: case-sensitive", "$ReplaceSuffix('c:/ABC/n_abc.tif', 'abc', 'x')", "c:/ABC/n_x.tif"},

        {"directory: help example", "$ReplaceDirectory('c:/test/result', 'c:/test/data/1/a.tif')", "c:/test/result/a.tif"},
        {"directory: bare file name gives nothing", "$ReplaceDirectory('c:/test/result', 'a.tif')", ""},
        {"directory: no doubled slash", "$ReplaceDirectory('c:/new/', 'c:/old/a.tif')", "c:/new/a.tif"},
        {"directory: empty directory", "$ReplaceDirectory('', 'c:/old/a.tif')", "/a.tif"},
        {"directory: backslash pairs normalised", "$ReplaceDirectory('c:\\\\new', 'c:\\\\old\\\\a.tif')", "c:/new/a.tif"},
        {"directory: single backslashes don't split", "$ReplaceDirectory('c:/new', 'c:\\old\\a.tif')", ""},

        {"select: help example", "$SelectDirectory('c:/test/result', 'c:/test/data/1/a.tif')", "c:/test/result/1/a.tif"},
        {"select: bare file name gives nothing", "$SelectDirectory('c:/r', 'a.tif')", ""},

        {"select2: help example", "$SelectDirectory2('c:/test/result', 'c:/test/data/1/2/3/a.tif', 'c:/test/data/1')",
         "c:/test/result/2/3/a.tif"},
        {"select2: base shares nothing", "$SelectDirectory2('c:/r', 'd:/x/a.tif', 'e:/base')", "c:/r/d:/x/a.tif"},
        {"select2: file inside the base text", "$SelectDirectory2('c:/r', 'c:/test', 'c:/test/data')", "c:/r/c:/test"},
        {"select2: base found anywhere", "$SelectDirectory2('c:/r', 'x/data/a.tif', 'c:/x/data')", "c:/r/a.tif"},
        {"select2: trailing slash doubles", "$SelectDirectory2('c:/r/', 'c:/d/1/a.tif', 'c:/d')", "c:/r//1/a.tif"},
        {"select2: leading slash dropped", "$SelectDirectory2('/out', '/data/1/a.tif', '/data')", "out/1/a.tif"},

        {"union: help example", "$UnionFilePath('c:/test/a_b_x.tif', 'c:/test/a_b_y.tif', '_')", "c:/test/a_b.tif"},
        {"union: nothing common, side by side", "$UnionFilePath('c:/test/x.tif', 'c:/test/y.tif', '_')", "c:/test/x.tif_y.tif"},
        {"union: every level", "$UnionFilePath('c:/d_1/a.tif', 'c:/d_2/a.tif', '_')", "c:/d/a.tif"},
        {"union: first parts differ", "$UnionFilePath('c:/a/b.tif', 'd:/a/b.tif', '_')", "c:/a/b.tif"},
        {"union: first path normalised", "$UnionFilePath('c:\\\\t\\\\a.tif', 'd:\\\\t\\\\a.tif', '_')", "c:/t/a.tif"},
        {"union: own suffix, no extension added", "$UnionFilePath('c:/t/a.b_x.tif', 'c:/t/a.b_y.tif', '_')", "c:/t/a.b"},
        {"union: no extensions, trailing dot", "$UnionFilePath('c:/t/a_x', 'c:/t/a_y', '_')", "c:/t/a."},
        {"union: repeated pieces collapse", "$UnionFilePath('c:/t/a_a_x.tif', 'c:/t/a_y.tif', '_')", "c:/t/a.tif"},

    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Eval(c.text), c.value.toStdString());
    }
}

// Constructed directly, a function with the wrong number of arguments is invalid
// and evaluates to nothing rather than reading past its parameters.
TEST(PathFunctions, WrongArgumentCount)
{
    struct Case
    {
        const char* name;
        std::function<APCFun*(const QString&)> make;
        int count;
    };
    const Case cases[] = {
        {"SubDirectory", [](const QString& t) { return new APCFun_SubDirectory(t); }, 2},
        {"ReplaceExtension", [](const QString& t) { return new APCFun_ReplaceExtension(t); }, 2},
        {"AppendSuffix", [](const QString& t) { return new APCFun_AppendSuffix(t); }, 2},
        {"ReplaceSuffix", [](const QString& t) { return new APCFun_ReplaceSuffix(t); }, 3},
        {"ReplaceDirectory", [](const QString& t) { return new APCFun_ReplaceDirectory(t); }, 2},
        {"SelectDirectory", [](const QString& t) { return new APCFun_SelectDirectory(t); }, 2},
        {"SelectDirectory2", [](const QString& t) { return new APCFun_SelectDirectory2(t); }, 3},
        {"UnionFilePath", [](const QString& t) { return new APCFun_UnionFilePath(t); }, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (int n = 0; n <= 4; ++n) {
            QStringList args;
            for (int i = 0; i < n; ++i)
                args << QStringLiteral("'x/y.z'");
            const QString text = QStringLiteral("$%1(%2)").arg(c.name, args.join(", "));
            std::unique_ptr<APCFun> fun(c.make(text));
            EXPECT_EQ(fun->IsValid(), n == c.count) << n << " arguments";
            if (n != c.count) {
                EXPECT_EQ(fun->Evaluate(), "") << n << " arguments";
            }
            std::unique_ptr<APCFun> created(APCFun::Create(text));
            EXPECT_EQ(created != nullptr, n == c.count) << n << " arguments";
        }
    }
}

TEST(PathFunctions, SubDirectoryMakesTheDirectory)
{
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    const QString root = QDir(tmp.path()).absolutePath();
    const QString expr = "$SubDirectory('" + root + "/x.tif', 'tmp')";
    EXPECT_EQ(Eval(expr), (root + "/tmp/x.tif").toStdString());
    EXPECT_TRUE(QFileInfo(root + "/tmp").isDir());
    // Again: the directory exists, the value is the same.
    EXPECT_EQ(Eval(expr), (root + "/tmp/x.tif").toStdString());

    // An empty name makes nothing and gives the file in its own directory.
    EXPECT_EQ(Eval("$SubDirectory('" + root + "/y.tif', '')"), (root + "/y.tif").toStdString());
    EXPECT_EQ(QDir(root).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{"tmp"});

    // A directory whose path holds both separators: the "/" form wins.
    ASSERT_TRUE(QDir(root).mkdir("a\\b"));
    EXPECT_EQ(Eval("$SubDirectory('" + root + "/a\\b/f.tif', 's')"), (root + "/a\\b/s/f.tif").toStdString());
    EXPECT_TRUE(QFileInfo(root + "/a\\b/s").isDir());

    // A relative path is taken from the working folder. A parent that does not
    // exist is not made: only the last level is.
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(root));
    const QString cwd = QDir::currentPath();
    const std::string relative = Eval("$SubDirectory('x.tif', 'sub')");
    const std::string windowsLike = Eval("$SubDirectory('c:/test/x.tif', 'tmp')");
    QDir::setCurrent(before);
    EXPECT_EQ(relative, (cwd + "/sub/x.tif").toStdString());
    EXPECT_TRUE(QFileInfo(cwd + "/sub").isDir());
    EXPECT_EQ(windowsLike, (cwd + "/c:/test/tmp/x.tif").toStdString());
    EXPECT_FALSE(QFileInfo(cwd + "/c:").exists());
}

} // namespace
