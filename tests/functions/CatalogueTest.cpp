// The function catalogue shown by the function dialog: names, argument counts and
// the shape of the help texts, whose examples must give the values they show.
#include "functions/APCFun.h"
#include "functions/FunctionInfo.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

namespace {

// Every entry: name and count, the line count, one carriage return behind line 4
// and no line end at the end, the signature first, and an example whose value is
// the one shown.
TEST(FunctionCatalogue, Entries)
{
    struct Entry
    {
        QString name;
        int argCount;
        int lines;
    };
    const Entry entries[] = {
        {"$SubDirectory", 2, 11},    {"$ReplaceExtension", 2, 10}, {"$AppendSuffix", 2, 10},
        {"$ReplaceSuffix", 3, 11},   {"$ReplaceDirectory", 2, 10}, {"$SelectDirectory", 2, 11},
        {"$SelectDirectory2", 3, 12}, {"$APCFun_UnionFilePath", 3, 11},
    };
    QTemporaryDir tmp; // $SubDirectory's example makes its directory
    ASSERT_TRUE(tmp.isValid());
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(tmp.path()));
    const QList<FunctionInfo> list = APCFun::GetFunctionList();
    ASSERT_EQ(list.size(), 8);
    for (int i = 0; i < list.size(); ++i) {
        const FunctionInfo& info = list.at(i);
        SCOPED_TRACE(entries[i].name.toStdString());
        EXPECT_EQ(info.name, entries[i].name);
        EXPECT_EQ(info.argCount, entries[i].argCount);
        const QStringList lines = info.help.split('\n');
        EXPECT_EQ(lines.size(), entries[i].lines);
        EXPECT_EQ(info.help.count('\r'), 1);
        EXPECT_TRUE(lines.value(3).endsWith('\r'));
        EXPECT_FALSE(info.help.endsWith('\n'));
        EXPECT_TRUE(lines.value(1).startsWith("    The function is "));
        EXPECT_TRUE(lines.value(2).startsWith("The format of string is:"));
        EXPECT_EQ(lines.value(2).endsWith(' '), i != 0);

        const QString call = QString(info.name).remove("APCFun_") + '(';
        EXPECT_TRUE(lines.value(0).startsWith(call));
        QString example = lines.value(4);
        if (!example.startsWith('$'))
            example.prepend('$');
        std::unique_ptr<APCFun> fun(APCFun::Create(example));
        ASSERT_NE(fun, nullptr);
        EXPECT_EQ(fun->Params().size(), info.argCount);
        const QString value = fun->Evaluate();
        const QString shown = lines.value(5).mid(QStringLiteral("return: '").size()).chopped(1);
        EXPECT_TRUE(lines.value(5).startsWith("return: '"));
        // $SubDirectory makes its result absolute.
        EXPECT_TRUE(i == 0 ? value.endsWith('/' + shown) : value == shown) << value.toStdString();
    }
    QDir::setCurrent(before);
}

} // namespace
