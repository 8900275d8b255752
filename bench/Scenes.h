#pragma once
// Rasters the benchmarks make at start (header-only, as each benchmark is one program).
#include <QDir>
#include <QString>

#include <gdal_priv.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace Bench {

inline void MakeTinyScene(const QString& path)
{
    GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.toUtf8().constData(), 4, 4, 4,
                                                                              GDT_Byte, nullptr);
    double gt[6] = {500000, 10, 0, 5000000, 0, -10};
    ds->SetGeoTransform(gt);
    std::vector<GByte> cells(16);
    for (int b = 1; b <= 4; ++b) {
        for (int i = 0; i < 16; ++i)
            cells[size_t(i)] = GByte(10 * b + i);
        if (ds->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, 4, 4, cells.data(), 4, 4, GDT_Byte, 0, 0) != CE_None)
            std::fprintf(stderr, "cannot write %s\n", path.toLocal8Bit().constData());
    }
    GDALClose(ds);
}

// A size x size scene of Byte bands that differ, so that NDVI has something to
// compute; with one band a rolling Float32 surface, so that hillshade does.
inline void MakeScene(const QString& path, int size, int bands, int seed)
{
    const GDALDataType type = bands == 1 ? GDT_Float32 : GDT_Byte;
    GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.toUtf8().constData(), size, size,
                                                                              bands, type, nullptr);
    double gt[6] = {500000, 10, 0, 5000000, 0, -10};
    ds->SetGeoTransform(gt);
    std::vector<float> cells(size_t(size) * size);
    for (int b = 1; b <= bands; ++b) {
        for (size_t i = 0; i < cells.size(); ++i)
            cells[i] = bands == 1 ? float(100 * std::sin((i % size + seed) / 40.0) * std::cos((i / size) / 55.0) + 300)
                                  : float(1 + (b * 37 + seed + i) % 200);
        if (ds->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, size, size, cells.data(), size, size, GDT_Float32, 0, 0) != CE_None)
            std::fprintf(stderr, "cannot write %s\n", path.toLocal8Bit().constData());
    }
    GDALClose(ds);
}

// count scenes scene_00.tif, scene_01.tif, ... in a new folder dir/name.
inline QString MakeScenes(const QString& dir, const QString& name, int count, int size, int bands)
{
    const QString scenes = dir + QLatin1Char('/') + name;
    QDir().mkpath(scenes);
    for (int i = 0; i < count; ++i)
        MakeScene(QStringLiteral("%1/scene_%2.tif").arg(scenes).arg(i, 2, 10, QLatin1Char('0')), size, bands, i);
    return scenes;
}

} // namespace Bench
