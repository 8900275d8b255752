#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace TestSupport {

// A georeferenced Byte GeoTIFF whose bands differ, so that NDVI has something to compute.
void MakeRaster(const QString& path, int size, int bands);

// Every file and folder below dir, hidden ones too, by path with its modification
// time: what "touching no file" is measured by.
QMap<QString, qint64> FileTimes(const QString& dir);
// Every file below dir by name with its checksum: what "the same files" is measured by.
QMap<QString, QByteArray> Checksums(const QString& dir);

// The shipped NDVI model over three 4-band scenes in scenes/, writing into out/.
struct SceneBatch
{
    QTemporaryDir dir;
    QString model = dir.filePath("scene_ndvi.apc");
    QString scenes = dir.filePath("scenes");
    QString out = dir.filePath("out");
    QString report = dir.filePath("report.json");

    SceneBatch();
    QString Scene(int i) const;
    QString Ndvi(int i) const;
    QString Table(int i) const;
    // The model and its two inputs, then more.
    QStringList Args(const QStringList& more, const QString& folders = QString()) const;
};

} // namespace TestSupport
