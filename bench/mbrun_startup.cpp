// mbrun's start-up against a GDAL tool doing the same: one conversion of a 64x64
// raster, each a whole process started from this one, medians of many runs in
// turn. Also `mbrun --list`, which loads the model and stops.
#include "BenchSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gdal_priv.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    GDALAllRegister();
    QTemporaryDir dir;
    const QString in = dir.filePath("in.tif");
    {
        GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(in.toUtf8().constData(), 64, 64, 1,
                                                                                   GDT_Byte, nullptr);
        std::vector<unsigned char> pixels(64 * 64, 7);
        if (ds->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, 64, 64, pixels.data(), 64, 64, GDT_Byte, 0, 0) != CE_None)
            return 1;
        GDALClose(ds);
    }
    const QString model = dir.filePath("convert.apc");
    QFile file(model);
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write(QByteArray(R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes>
        <Process class="algo" name="{s}" posX="0" posY="0" painter="" processName="raster.translate">
            <Parameter name="In File" type="file" direction="0" value="%{in}%" description="In"/>
            <Parameter name="Out File" type="file" direction="1" value="%{out}%" description="Out"/>
        </Process>
    </Processes>
    <Vars>
        <Var class="file" name="{in}" description="In" posX="0" posY="0" painter="" constant="1" value=")" + in.toUtf8() + R"("/>
        <Var class="file" name="{out}" description="Out" posX="0" posY="0" painter="" constant="1" value=")" +
                                     dir.filePath("by-mbrun.tif").toUtf8() + R"("/>
    </Vars>
    <Arrows>
        <Arrow head="{s}" headType="process" headParam="In File" tail="{in}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{out}" headType="var" headParam="" tail="{s}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
    </Arrows>
</Configuration>
)"));
    file.close();
    const QString mbrun = QCoreApplication::applicationDirPath() + "/mbrun";
    const QString translate = QStandardPaths::findExecutable("gdal_translate");
    if (translate.isEmpty()) {
        std::printf("gdal_translate: not found (Debian package gdal-bin)\n");
        return 1;
    }
    std::vector<double> ours, theirs, list;
    for (int i = 0; i < (argc > 1 ? atoi(argv[1]) : 41); ++i) {
        ours.push_back(Bench::TimeProcess(mbrun, {model}));
        theirs.push_back(Bench::TimeProcess(translate, {"-q", in, dir.filePath("by-gdal.tif")}));
        list.push_back(Bench::TimeProcess(mbrun, {model, "--list"}));
    }
    if (std::count(ours.begin(), ours.end(), -1.0) || std::count(theirs.begin(), theirs.end(), -1.0)) {
        std::printf("a run failed\n");
        return 1;
    }
    Bench::Print("mbrun_one_step_64x64_median", median(ours), "ms");
    Bench::Print("gdal_translate_64x64_median", median(theirs), "ms (baseline, same conversion)");
    // Each pair runs back to back, so the median of the pairs' ratios holds when the
    // machine's speed drifts during the benchmark.
    std::vector<double> ratios;
    for (size_t i = 0; i < ours.size(); ++i)
        ratios.push_back(ours[i] / theirs[i]);
    Bench::Print("mbrun_to_gdal_translate_ratio", median(ratios), "x (median of the pairs' ratios; target <= 1)");
    Bench::Print("mbrun_list_median", median(list), "ms (target < 50)");
    return 0;
}
