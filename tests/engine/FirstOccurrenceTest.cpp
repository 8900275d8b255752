#include "engine/FirstOccurrence.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <random>

using Plugin::FirstOccurrence;

namespace {

// Every substring of the haystack, and strings that are not in it, must be found
// exactly where a plain search finds them first.
void ExpectSameAsPlainSearch(const QString& haystack, const QStringList& extraNeedles)
{
    const FirstOccurrence index(haystack);
    for (int from = 0; from < haystack.size(); ++from)
        for (int len = 1; from + len <= haystack.size() && len <= 12; ++len) {
            const QString needle = haystack.mid(from, len);
            ASSERT_EQ(index.IndexOf(needle), haystack.indexOf(needle)) << qPrintable(haystack) << " / " << qPrintable(needle);
        }
    for (const QString& needle : extraNeedles)
        EXPECT_EQ(index.IndexOf(needle), haystack.indexOf(needle)) << qPrintable(needle);
}

} // namespace

// File names, text beyond Latin-1, and random text over small alphabets, which repeats a lot.
TEST(FirstOccurrence, AgreesWithPlainSearch)
{
    ExpectSameAsPlainSearch(QStringLiteral("scene_00042_b.tif\nscene_00042_a.tif\nScene_1.TIF\n"), {"00042_a", "tif\nscene", "scene_00043"});
    ExpectSameAsPlainSearch(QStringLiteral("Ærø_Ост_北京\nærø"), {"ærø", "京\n"});
    EXPECT_EQ(FirstOccurrence(QString()).IndexOf(QStringLiteral("a")), -1);
    EXPECT_EQ(FirstOccurrence(QStringLiteral("xyz")).IndexOf(QString()), 0);
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round) {
        QString haystack;
        const int alphabet = 2 + round % 4;
        for (int i = 0; i < 60; ++i)
            haystack += QChar(u'a' + int(random() % alphabet));
        QStringList absent;
        for (int i = 0; i < 10; ++i) {
            QString needle;
            for (int k = 0; k < 1 + int(random() % 8); ++k)
                needle += QChar(u'a' + int(random() % (alphabet + 1)));
            absent << needle;
        }
        ExpectSameAsPlainSearch(haystack, absent);
    }
}
