#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <gtest/gtest.h>

#include <vector>

namespace TestSupport {

QMap<QString, qint64> FileTimes(const QString& dir)
{
    QMap<QString, qint64> files;
    QDirIterator it(dir, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        files.insert(it.filePath(), it.fileInfo().lastModified().toMSecsSinceEpoch());
    }
    return files;
}

QMap<QString, QByteArray> Checksums(const QString& dir)
{
    QMap<QString, QByteArray> sums;
    for (QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        it.next();
        sums.insert(it.fileName(), QCryptographicHash::hash(ReadAll(it.filePath()), QCryptographicHash::Md5));
    }
    return sums;
}

void MakeRaster(const QString& path, int size, int bands)
{
    GDALAllRegister();
    GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.toUtf8().constData(), size, size,
                                                                              bands, GDT_Byte, nullptr);
    ASSERT_NE(ds, nullptr);
    double gt[6] = {500000, 10, 0, 5000000, 0, -10};
    ds->SetGeoTransform(gt);
    OGRSpatialReference srs;
    srs.importFromEPSG(32632);
    ds->SetSpatialRef(&srs);
    std::vector<GByte> cells(size_t(size) * size);
    for (int b = 1; b <= bands; ++b) {
        for (int i = 0; i < size * size; ++i)
            cells[size_t(i)] = GByte(1 + (b * 37 + i) % 200);
        ASSERT_EQ(ds->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, size, size, cells.data(), size, size, GDT_Byte, 0, 0), CE_None);
    }
    GDALClose(ds);
}

SceneBatch::SceneBatch()
{
    QFile::copy(QStringLiteral(MB_SOURCE_DIR "/examples/scene_ndvi.apc"), model);
    QDir().mkpath(scenes);
    for (const char* name : {"scene_01.tif", "scene_02.tif", "scene_03.tif"})
        MakeRaster(QDir(scenes).filePath(name), 8, 4);
}

QString SceneBatch::Scene(int i) const
{
    return QDir(scenes).filePath(QStringLiteral("scene_%1.tif").arg(i, 2, 10, QLatin1Char('0')));
}

QString SceneBatch::Ndvi(int i) const
{
    return QDir(out).filePath(QStringLiteral("scene_%1_ndvi.tif").arg(i, 2, 10, QLatin1Char('0')));
}

QString SceneBatch::Table(int i) const
{
    return QDir(out).filePath(QStringLiteral("scene_%1_ndvi.csv").arg(i, 2, 10, QLatin1Char('0')));
}

QStringList SceneBatch::Args(const QStringList& more, const QString& folders) const
{
    return QStringList{model, "--set", "Scene folders=" + (folders.isEmpty() ? scenes : folders), "--set",
                       "Output folder=" + out} + more;
}

} // namespace TestSupport
