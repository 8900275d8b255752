#include "HostCatalog/AlgoRunContext.h"
#include "HostCatalog/AlgorithmRegistry.h"
#include "HostCatalog/GetParamValue.h"
#include "HostRunner/AlgorithmList.h"
#include "HostRunner/ExcuteAlgo.h"
#include "HostRunner/RunRecord.h"

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

namespace {

QJsonObject parse(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

struct ProgressLog
{
    std::vector<double> values;
    std::vector<std::string> texts;
};

int onProgress(double percent, const char* text, void* user)
{
    auto* log = static_cast<ProgressLog*>(user);
    log->values.push_back(percent);
    log->texts.emplace_back(text);
    return 0;
}

} // namespace

TEST(GetParamValue, WalksObjectsArraysAndReportsAbsenceAsEmpty)
{
    const QJsonObject o = parse(R"({"width":"80.000000","a":{"b":{"c":"deep"}},
        "points":[{"x":"1.5","y":"-2"},{"x":"3"}],"n":12.5,"obj":{}})");
    struct Case { const char* name; QStringList path; QString expected; };
    const std::vector<Case> cases = {
        {"top level", {"width"}, "80.000000"},
        {"nested", {"a", "b", "c"}, "deep"},
        {"array index", {"points", "0", "y"}, "-2"},
        {"missing member of element", {"points", "1", "y"}, ""},
        {"index past the end", {"points", "2", "x"}, ""},
        {"non-decimal index", {"points", "x", "x"}, ""},
        {"negative index", {"points", "-1", "x"}, ""},
        {"number", {"n"}, "12.5"},
        {"object at the end", {"obj"}, ""},
        {"walk through a string", {"width", "x"}, ""},
        {"missing key", {"nope"}, ""},
        {"empty path", {}, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Plugin::GetParamValue(o, c.path), c.expected);
    }
}

// A library's catalogue is built on the first lookup, once, and a lookup on another
// thread meanwhile waits for it instead of missing its algorithms.
TEST(Registry, SourcesRunOnceBeforeTheFirstLookupOnAnyThread)
{
    auto& reg = Plugin::AlgorithmRegistry::Instance();
    std::atomic<int> runs{0};
    reg.AddSource([&] {
        ++runs;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Plugin::AlgoConfig cfg;
        cfg.name = "test.lazy";
        Plugin::AlgorithmRegistry::Instance().Register(cfg, {});
        // A source may look algorithms up itself.
        EXPECT_NE(Plugin::AlgorithmRegistry::Instance().Config("test.lazy"), nullptr);
    });
    EXPECT_EQ(runs, 0);
    std::vector<std::thread> lookers;
    std::atomic<int> found{0};
    for (int i = 0; i < 4; ++i)
        lookers.emplace_back([&] { found += reg.Config("test.lazy") != nullptr; });
    for (std::thread& t : lookers)
        t.join();
    EXPECT_EQ(found, 4);
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(reg.Names().contains("test.lazy"));
    EXPECT_EQ(runs, 1);
    // The list the README shows leaves the test algorithms out.
    EXPECT_FALSE(HostRunner::AlgorithmListMarkdown().contains("test.noop"));
}

TEST(ExcuteAlgo, ErrorsOfTheAlgorithmAndOfTheParameterTextThenAGoodRun)
{
    HostRunner::RunRecord r;
    std::memset(&r, 0, sizeof r);
    EXPECT_EQ(HostRunner::ExcuteAlgo("no.such", "{}", &r) & 0xff, 0);
    EXPECT_NE(r.errorCode, 0);
    EXPECT_STREQ(r.errorMessage, "Unknown algorithm: no.such");
    EXPECT_EQ(HostRunner::ExcuteAlgo("no.such", "{}", nullptr), 0);

    EXPECT_EQ(HostRunner::ExcuteAlgo("test.fail", R"({"Code":"17","Message":"broken here"})", &r), 0);
    EXPECT_EQ(r.errorCode, 17);
    EXPECT_STREQ(r.errorMessage, "broken here");

    EXPECT_EQ(HostRunner::ExcuteAlgo("test.noop", "{not json", &r), 0);
    EXPECT_NE(r.errorCode, 0);
    EXPECT_NE(std::string(r.errorMessage).find("test.noop"), std::string::npos);

    // A message longer than the record's field is cut and stays terminated.
    const std::string longText(1000, 'x');
    const std::string json = R"({"Code":"3","Message":")" + longText + "\"}";
    EXPECT_EQ(HostRunner::ExcuteAlgo("test.fail", json.c_str(), &r), 0);
    EXPECT_EQ(std::strlen(r.errorMessage), sizeof(r.errorMessage) - 1);

    // A good run clears what the last one left and reports to the callback with its user data.
    ProgressLog log;
    r.callback = &onProgress;
    r.userData = &log;
    EXPECT_EQ(HostRunner::ExcuteAlgo("test.progress", R"({"Steps":"4"})", &r), 1);
    EXPECT_EQ(r.errorCode, 0);
    EXPECT_STREQ(r.errorMessage, "");
    EXPECT_EQ(log.values, (std::vector<double>{25, 50, 75, 100}));
    EXPECT_EQ(log.texts.back(), "step 4");
}
