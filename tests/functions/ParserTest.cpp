// The expression parser: which texts give a function, and how arguments are cut
// and classified. The language has no quoting, so several odd texts are accepted
// or rejected on purpose.
#include "functions/APCFun.h"
#include "functions/APCFunExpParam.h"
#include "functions/APCFunStringParam.h"
#include "functions/APCFunVarParam.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

namespace {

std::unique_ptr<APCFun> Parse(const QString& text) { return std::unique_ptr<APCFun>(APCFun::Create(text)); }

// Which texts give a function; of some, the kind of each parameter (v: var,
// s: string, e: expression) and its text.
TEST(ExpressionParser, AcceptsRejectsAndClassifiesArguments)
{
    struct Case
    {
        const char* name;
        QString text;
        bool valid;
        QList<QPair<char, QString>> params = {};
    };
    const Case cases[] = {
        {"plain call", "$AppendSuffix(%a%, '_x')", true, {{'v', "a"}, {'s', "_x"}}},
        {"whitespace beside arguments", "   $AppendSuffix(  %a%   ,\t\n '_x'  )  ", true},
        {"too few arguments", "$AppendSuffix(%a%)", false},
        {"too many arguments", "$AppendSuffix(%a%, 'x', 'y')", false},
        {"no arguments", "$AppendSuffix()", false},
        {"unknown name", "$Nope(%a%, 'x')", false},
        {"name is case-sensitive", "$appendSuffix(%a%, 'x')", false},
        {"blank before name", "$ AppendSuffix(%a%, 'x')", false},
        {"no dollar", "AppendSuffix(%a%, 'x')", false},
        {"bare var reference", "%a%", false},
        {"bare string", "'text'", false},
        {"empty", "", false},
        {"comma inside quotes cuts", "$AppendSuffix(%a%, 'x,y')", false},
        {"nested call keeps its commas", "$SubDirectory($AppendSuffix(%a%, '_x'), 'tmp')", true},
        {"nested call with wrong count", "$SubDirectory($AppendSuffix(%a%), 'tmp')", false},
        {"parenthesis inside quotes counts", "$AppendSuffix(%a%, 'a)b')", false},
        {"balanced parentheses inside quotes", "$AppendSuffix(%a%, '(b)')", true},
        {"text behind the call", "$AppendSuffix(%a%, '_x') trailing", false},
        {"doubled parentheses", "$AppendSuffix((%a%, '_x'))", false},
        {"bare word argument", "$AppendSuffix(%a%, _x)", false},
        {"empty argument between commas", "$AppendSuffix(%a%,, '_x')", false},
        {"percent signs inside a string stay a string", "$AppendSuffix(%a%, '%x%')", true, {{'v', "a"}, {'s', "%x%"}}},
        {"empty string literal", "$SubDirectory(%a%, '')", true},
        // A lone delimiter starts and ends with itself: an empty reference or literal.
        {"lone delimiters", "$AppendSuffix(%, ')", true, {{'v', ""}, {'s', ""}}},
        // A group behind the call cuts only arguments that end the classification.
        {"group behind the call", "$AppendSuffix(%a%, '_x') (y)", true},
        {"catalogue name is not a function name", "$APCFun_UnionFilePath('a', 'b', '_')", false},
        {"whitespace runs inside a string collapse", "$AppendSuffix('c:/a   b/x.tif', ' _ x ')", true,
         {{'s', "c:/a b/x.tif"}, {'s', " _ x "}}},
        {"nested call keeps its simplified text", "$SubDirectory( $AppendSuffix(%a%,   '_x') , 'tmp')", true,
         {{'e', "$AppendSuffix(%a%, '_x')"}, {'s', "tmp"}}},
        {"every function name",
         "$ReplaceDirectory($SelectDirectory('d', $SelectDirectory2('a', 'b', 'c')), "
         "$ReplaceSuffix($ReplaceExtension('x', 'y'), 'p', $UnionFilePath('a', 'b', '_')))",
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto fun = Parse(c.text);
        EXPECT_EQ(fun != nullptr, c.valid);
        if (!fun || c.params.isEmpty())
            continue;
        ASSERT_EQ(fun->Params().size(), c.params.size());
        for (int i = 0; i < c.params.size(); ++i) {
            APCFunParam* p = fun->Params().at(i);
            const char kind = dynamic_cast<APCFunVarParam*>(p)      ? 'v'
                              : dynamic_cast<APCFunStringParam*>(p) ? 's'
                              : dynamic_cast<APCFunExpParam*>(p)    ? 'e'
                                                                    : '?';
            EXPECT_EQ(kind, c.params.at(i).first) << "parameter " << i;
            EXPECT_EQ(p->GetText().toStdString(), c.params.at(i).second.toStdString()) << "parameter " << i;
        }
    }
}

} // namespace
