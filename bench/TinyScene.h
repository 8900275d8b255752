#pragma once
// A 4x4, four-band scene for the benchmarks that run many tiny rounds (header-only,
// as each benchmark is one program).
#include <QString>

#include <gdal_priv.h>

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

} // namespace Bench
