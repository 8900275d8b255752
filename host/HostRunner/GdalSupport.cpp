#include "HostRunner/GdalSupport.h"

#include "HostCatalog/AlgoRunContext.h"
#include "HostCatalog/AlgorithmRegistry.h"
#include "HostRunner/OutputPaths.h"
#include "HostRunner/SpatialReference.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <mutex>
#include <set>
#include <signal.h>
#include <unistd.h>

namespace HostRunner {

const char* const kRasterInputFilter = "Rasters (*.tif *.tiff *.img *.vrt *.asc *.png *.jpg);;All files (*)";
const char* const kRasterOutputFilter = "GeoTIFF (*.tif *.tiff);;HFA (*.img);;ASCII grid (*.asc);;"
                                        "PNG (*.png);;GeoPackage (*.gpkg)";
const char* const kVectorInputFilter = "Vector layers (*.shp *.gpkg *.geojson *.json *.csv *.kml *.gml *.fgb);;"
                                       "All files (*)";
const char* const kVectorOutputFilter = "Shapefile (*.shp);;GeoPackage (*.gpkg);;GeoJSON (*.geojson *.json);;"
                                        "CSV (*.csv);;FlatGeobuf (*.fgb)";
const char* const kTableOutputFilter = "CSV (*.csv);;Text (*.txt)";
const char* const kVrtOutputFilter = "Virtual raster (*.vrt)";
const char* const kReportOutputFilter = "JSON (*.json);;Text (*.txt)";

namespace {

struct ExtensionDriver
{
    const char* extension;
    const char* driver; // null: written by the algorithm itself
};

// What the host writes, by output kind. An extension not listed fails the run rather
// than fall back to a default format, which would write, say, a GeoTIFF named model.apc.
const ExtensionDriver kRasterDrivers[] = {
    {"tif", "GTiff"}, {"tiff", "GTiff"}, {"img", "HFA"},  {"asc", "AAIGrid"},
    {"png", "PNG"},   {"jpg", "JPEG"},   {"jpeg", "JPEG"}, {"gpkg", "GPKG"},
};

const ExtensionDriver kVectorDrivers[] = {
    {"shp", "ESRI Shapefile"}, {"gpkg", "GPKG"}, {"geojson", "GeoJSON"}, {"json", "GeoJSON"},
    {"csv", "CSV"},            {"kml", "KML"},   {"gml", "GML"},         {"fgb", "FlatGeobuf"},
    {"tab", "MapInfo File"},   {"sqlite", "SQLite"},
};

const ExtensionDriver kTableDrivers[] = {{"csv", nullptr}, {"txt", nullptr}};
const ExtensionDriver kVrtDrivers[] = {{"vrt", "VRT"}};
const ExtensionDriver kReportDrivers[] = {{"json", nullptr}, {"txt", nullptr}};

struct OutputFormats
{
    const char* kind;
    const ExtensionDriver* begin;
    const ExtensionDriver* end;
};

OutputFormats formatsFor(OutputKind kind)
{
    if (kind == OutputKind::Raster)
        return {"raster", std::begin(kRasterDrivers), std::end(kRasterDrivers)};
    if (kind == OutputKind::Vector)
        return {"vector", std::begin(kVectorDrivers), std::end(kVectorDrivers)};
    if (kind == OutputKind::Vrt)
        return {"virtual raster", std::begin(kVrtDrivers), std::end(kVrtDrivers)};
    if (kind == OutputKind::Report)
        return {"report", std::begin(kReportDrivers), std::end(kReportDrivers)};
    return {"table", std::begin(kTableDrivers), std::end(kTableDrivers)};
}

} // namespace

bool DriverForPath(const QString& path, OutputKind kind, QString* driver, QString* error)
{
    const OutputFormats formats = formatsFor(kind);
    const QString suffix = QFileInfo(path).suffix().toLower();
    QStringList known;
    for (const ExtensionDriver* e = formats.begin; e != formats.end; ++e) {
        if (suffix == QLatin1String(e->extension)) {
            *driver = e->driver ? QString::fromLatin1(e->driver) : QString();
            return true;
        }
        known << QLatin1Char('.') + QLatin1String(e->extension);
    }
    const QString kindName = QLatin1String(formats.kind);
    const QString why = suffix.isEmpty() ? QStringLiteral("the name has no extension to choose a %1 format by").arg(kindName)
                                         : QStringLiteral(".%1 is not a %2 format the host writes").arg(suffix, kindName);
    *error = QStringLiteral("Cannot write %1: %2; use one of %3").arg(path, why, known.join(QLatin1String(", ")));
    return false;
}

namespace {

QByteArray encoded(const QString& path)
{
    return QFile::encodeName(path);
}

bool isVirtualPath(const QString& path)
{
    return path.startsWith(QLatin1String("/vsi"));
}

// The path as the file system knows it, so that two spellings of one file compare equal.
QString canonical(const QString& path)
{
    return SystemPath(path);
}

QString formatNumber(double value)
{
    return QString::number(value, 'g', 12);
}

// An output is written into a hidden folder beside it, named by a short hash of the
// output's name and the writing process: short, so that a name of 255 bytes still
// fits, and telling whose it is, so that one a killed run left can be found again.
const QLatin1String kStagingPrefix(".mb-writing-");

QString stagingKey(const QString& fileName)
{
    return QString::fromLatin1(QCryptographicHash::hash(fileName.toUtf8(), QCryptographicHash::Sha1).toHex().left(8));
}

// The staging folders of this process, so that a signal can take them away.
struct LiveStaging
{
    std::mutex mutex;
    std::set<QString> folders;
    bool discarded = false;
};

LiveStaging& liveStaging()
{
    static LiveStaging live;
    return live;
}

// False once the run was stopped: a step that prepares its output only then would
// leave its staging folder behind the process.
bool holdStaging(const QString& folder)
{
    LiveStaging& live = liveStaging();
    const std::lock_guard<std::mutex> lock(live.mutex);
    if (live.discarded)
        return false;
    live.folders.insert(folder);
    return true;
}

bool processIsGone(qint64 pid)
{
    return pid > 0 && pid != qint64(::getpid()) && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
}

// What stands at path, when a new output of driver (empty: a table) may replace it:
// nothing, or a dataset of that same format, whose files go into *files (a shapefile's
// sidecars, a GeoTIFF's .aux.xml). A folder or a file of another format is not ours
// to replace: false, with the reason in *why.
bool replaceableOutput(const QString& path, const QString& driver, QStringList* files, QString* why)
{
    files->clear();
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return true;
    if (file.isDir()) {
        *why = QStringLiteral("it is a folder");
        return false;
    }
    if (driver.isEmpty()) {
        *files << file.absoluteFilePath();
        return true;
    }
    // Probing an old file is not part of the run: its complaints are no run errors.
    CPLErrorStateBackuper keepLastError;
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const QByteArray name = encoded(file.absoluteFilePath());
    const QByteArray driverName = driver.toLatin1();
    const char* const allowed[] = {driverName.constData(), nullptr};
    GDALDriverH identified = GDALIdentifyDriverEx(name.constData(), GDAL_OF_RASTER | GDAL_OF_VECTOR, allowed, nullptr);
    if (!identified) {
        GDALDriver* d = GetGDALDriverManager()->GetDriverByName(driverName.constData());
        const char* longName = d ? d->GetMetadataItem(GDAL_DMD_LONGNAME) : nullptr;
        *why = QStringLiteral("the existing file is not in %1 format, so it is left alone")
                   .arg(QString::fromUtf8(longName ? longName : driverName.constData()));
        return false;
    }
    *files << file.absoluteFilePath();
    GDALDatasetUniquePtr old(GDALDataset::Open(name.constData(), GDAL_OF_RASTER | GDAL_OF_VECTOR, allowed));
    if (!old)
        return true; // damaged, but of our format: the main file alone
    // Only the dataset's own sidecars, which share its stem: a format may list other
    // datasets' files too.
    const QString stem = file.completeBaseName() + QLatin1Char('.');
    char** list = old->GetFileList();
    for (char** f = list; f && *f; ++f) {
        const QFileInfo part(QFile::decodeName(*f));
        if (part.absolutePath() == file.absolutePath() && part.fileName().startsWith(stem)
            && !files->contains(part.absoluteFilePath()))
            *files << part.absoluteFilePath();
    }
    CSLDestroy(list);
    return true;
}

// Moves a finished file over its destination, in one step where the system can.
bool moveInto(const QString& from, const QString& to)
{
#ifdef Q_OS_WIN
    // Renaming does not replace a file there.
    return (!QFileInfo::exists(to) || QFile::remove(to)) && QFile::rename(from, to);
#else
    return std::rename(encoded(from).constData(), encoded(to).constData()) == 0;
#endif
}


Plugin::Param makeParam(const QString& name, const QString& type, int direction, const QString& description,
                        const QString& filter)
{
    Plugin::Param p;
    p.name = name;
    p.type = type;
    p.direction = direction;
    p.description = description;
    QJsonObject typeParam{{QStringLiteral("direction"), QString::number(direction)}};
    if (!filter.isEmpty())
        typeParam.insert(QStringLiteral("filter"), filter);
    p.typeParam = QString::fromUtf8(QJsonDocument(typeParam).toJson(QJsonDocument::Compact));
    return p;
}

} // namespace

void EnsureGdalRegistered()
{
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

QStringList SplitPaths(const QString& value)
{
    QStringList paths;
    for (const QString& part : value.split(QLatin1Char(';'))) {
        const QString path = part.trimmed();
        if (!path.isEmpty())
            paths << path;
    }
    return paths;
}

Plugin::Param InputParam(const QString& name, const QString& type, const QString& description, const QString& filter)
{
    return makeParam(name, type, 0, description, filter);
}

Plugin::Param OutputParam(const QString& name, const QString& type, const QString& description, const QString& filter)
{
    return makeParam(name, type, 1, description, filter);
}

Plugin::Param WithDefault(Plugin::Param param, const QString& defaultValue)
{
    param.defaultValue = defaultValue;
    return param;
}

Plugin::Param Optional(Plugin::Param param, const QString& defaultValue)
{
    param.isOptional = true;
    param.defaultValue = defaultValue;
    return param;
}

GDALDatasetUniquePtr CreateVectorOutput(GdalJob& job, const OutputFile& output)
{
    const QString& format = output.Driver();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.toLatin1().constData());
    if (!driver || !driver->GetMetadataItem(GDAL_DCAP_CREATE)) {
        job.Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: format %2 is not available").arg(output.Path(), format));
        return nullptr;
    }
    const QByteArray name = encoded(output.WritePath());
    GDALDatasetUniquePtr ds(driver->Create(name.constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds)
        job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create %1").arg(output.Path()));
    return ds;
}

OGRLayer* CreateLayerLike(GdalJob& job, GDALDataset& ds, const OutputFile& output, OGRLayer& source,
                          OGRwkbGeometryType type, std::vector<int>* fieldMap)
{
    const QString& out = output.Path();
    OGRLayer* target = ds.CreateLayer(QFileInfo(out).completeBaseName().toUtf8().constData(), source.GetSpatialRef(), type,
                                      LayerOptionsFor(job, output.Driver()).List());
    if (!target) {
        job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create layer in %1").arg(out));
        return nullptr;
    }
    OGRFeatureDefn* sourceDefn = source.GetLayerDefn();
    fieldMap->clear();
    for (int i = 0; i < sourceDefn->GetFieldCount(); ++i) {
        if (target->CreateField(sourceDefn->GetFieldDefn(i)) != OGRERR_NONE) {
            job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create field %1 in %2")
                                                 .arg(QString::fromUtf8(sourceDefn->GetFieldDefn(i)->GetNameRef()), out));
            return nullptr;
        }
        fieldMap->push_back(target->GetLayerDefn()->GetFieldCount() - 1); // formats may rename, so map by position
    }
    return target;
}

CPLStringList LayerOptionsFor(const GdalJob& job, const QString& driver)
{
    CPLStringList options;
    if (driver == QLatin1String("CSV"))
        options.SetNameValue("GEOMETRY", "AS_WKT");
    CPLStringList own;
    QString error; // checked before the run
    ParseOptionList(job.Text(QString::fromLatin1(kLayerCreationOptions)), &own, &error);
    for (int i = 0; i < own.Count(); ++i) {
        char* key = nullptr;
        const char* value = CPLParseNameValue(own[i], &key);
        if (key)
            options.SetNameValue(key, value);
        CPLFree(key);
    }
    return options;
}

// ---------------------------------------------------------------------------------
// GdalErrorCapture

GdalErrorCapture::GdalErrorCapture()
{
    // GDAL's own worker threads (GDAL_NUM_THREADS decoding, compressing, warping)
    // report to the process-wide handler, never to this one, and the reader then
    // fails silently. Keeping the work on this thread loses no error.
    if (const char* threads = CPLGetThreadLocalConfigOption("GDAL_NUM_THREADS", nullptr)) {
        m_threadsBefore = threads;
        m_hadThreads = true;
    }
    CPLSetThreadLocalConfigOption("GDAL_NUM_THREADS", "1");
    CPLErrorReset();
    CPLPushErrorHandlerEx(&GdalErrorCapture::Handler, this);
    CPLSetCurrentErrorHandlerCatchDebug(FALSE);
}

GdalErrorCapture::~GdalErrorCapture()
{
    CPLPopErrorHandler();
    CPLSetThreadLocalConfigOption("GDAL_NUM_THREADS", m_hadThreads ? m_threadsBefore.constData() : nullptr);
}

QString GdalErrorCapture::Message() const
{
    return m_failures > 0 ? m_firstFailure : m_lastWarning;
}

void CPL_STDCALL GdalErrorCapture::Handler(CPLErr level, CPLErrorNum, const char* message)
{
    auto* self = static_cast<GdalErrorCapture*>(CPLGetErrorHandlerUserData());
    if (!self || level == CE_Debug || level == CE_None)
        return;
    const QString text = QString::fromUtf8(message ? message : "").trimmed();
    if (level == CE_Warning) {
        self->m_lastWarning = text;
    } else {
        if (self->m_failures++ == 0)
            self->m_firstFailure = text;
    }
}

// ---------------------------------------------------------------------------------
// OutputFile

OutputFile::OutputFile(const QString& path, const QString& target, const QString& driver,
                       std::unique_ptr<QTemporaryDir> staging)
    : m_path(path), m_target(target), m_driver(driver), m_staging(std::move(staging))
{
    m_writePath = QDir(m_staging->path()).filePath(QFileInfo(target).fileName());
}

OutputFile::~OutputFile()
{
    if (!m_staging)
        return;
    LiveStaging& live = liveStaging();
    const std::lock_guard<std::mutex> lock(live.mutex);
    live.folders.erase(m_staging->path());
}

bool OutputFile::Commit(QString* error)
{
    if (!m_staging)
        return true; // already in place
    const QFileInfo target(m_target);
    const QString mainName = target.fileName();
    QStringList written = QDir(m_staging->path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    if (!written.removeOne(mainName)) {
        *error = QStringLiteral("Cannot write %1: nothing was written").arg(m_path);
        return false;
    }
    written << mainName; // last, so that it appears complete
    // Checked again: the old output may have changed while the run was going on.
    QStringList oldFiles;
    QString why;
    if (!replaceableOutput(target.absoluteFilePath(), m_driver, &oldFiles, &why)) {
        *error = QStringLiteral("Cannot replace %1: %2").arg(m_path, why);
        return false;
    }
    const QDir folder = target.absoluteDir();
    LiveStaging& live = liveStaging();
    std::unique_lock<std::mutex> lock(live.mutex);
    if (live.discarded) {
        *error = QStringLiteral("Cannot write %1: the run was stopped").arg(m_path);
        return false;
    }
    for (const QString& name : qAsConst(written)) {
        const QString to = folder.absoluteFilePath(name);
        if (!moveInto(QDir(m_staging->path()).filePath(name), to)) {
            *error = QStringLiteral("Cannot move %1 into place: %2").arg(to, qt_error_string(errno));
            return false;
        }
        oldFiles.removeAll(to);
    }
    live.folders.erase(m_staging->path());
    lock.unlock();
    for (const QString& stale : qAsConst(oldFiles))
        QFile::remove(stale); // an old sidecar the new output has not, such as an .aux.xml
    m_staging.reset();
    return true;
}

// ---------------------------------------------------------------------------------
// PassedBlocks

PassedBlocks::PassedBlocks(GDALRasterBand& band, GDALDataset* dataset) : m_band(band), m_dataset(dataset)
{
    int width = 0;
    band.GetBlockSize(&width, &m_height);
    m_height = std::max(1, m_height);
    // Strips of a line or a few: forgetting them one by one costs more than it saves.
    m_every = std::max(1, 64 / m_height);
}

void PassedBlocks::At(int y)
{
    // Only where a row of blocks begins: a pass reading several lines at once could
    // otherwise stand inside a block it is still reading.
    if (y % m_height != 0)
        return;
    const int row = y / m_height;
    if (row - m_row < m_every)
        return;
    m_row = row;
    if (m_dataset)
        m_dataset->FlushCache(false);
    else
        m_band.FlushCache(false);
}

// ---------------------------------------------------------------------------------
// GdalProgress

GdalProgress::GdalProgress(GdalJob& job, const QString& text, double from, double to)
    : m_job(job), m_text(text), m_from(from), m_to(to)
{
}

int CPL_STDCALL GdalProgress::Function(double fraction, const char*, void* self)
{
    if (self)
        static_cast<GdalProgress*>(self)->Report(fraction);
    return TRUE;
}

void GdalProgress::Report(double fraction)
{
    if (!std::isfinite(fraction))
        return;
    const double percent = m_from + (m_to - m_from) * std::clamp(fraction, 0.0, 1.0);
    const int whole = int(percent);
    if (whole == m_lastWhole)
        return;
    m_lastWhole = whole;
    m_job.Progress(percent, m_text);
}

// ---------------------------------------------------------------------------------
// GdalJob

GdalJob::GdalJob(const Plugin::AlgoConfig& config, const QJsonObject& params, Plugin::AlgoRunContext& ctx)
    : m_config(config), m_params(params), m_ctx(ctx)
{
}

bool GdalJob::CheckRequired()
{
    for (const Plugin::Param& p : m_config.params) {
        if (!p.isOptional && Text(p.name).isEmpty())
            return Fail(kBadParameter, QStringLiteral("%1 needs a value").arg(p.name));
    }
    return true;
}

QString GdalJob::Text(const QString& name) const
{
    const QJsonValue v = m_params.value(name);
    QString text = v.isDouble() ? QString::number(v.toDouble(), 'g', 17) : v.toString().trimmed();
    if (!text.isEmpty())
        return text;
    for (const Plugin::Param& p : m_config.params) {
        if (p.name == name)
            return p.defaultValue.trimmed();
    }
    return QString();
}

bool GdalJob::Int(const QString& name, int* out, int min, int max)
{
    bool ok = false;
    const QString text = Text(name);
    const int value = text.toInt(&ok);
    if (!ok)
        return Fail(kBadParameter, QStringLiteral("%1 must be a whole number, not '%2'").arg(name, text));
    if (value < min || value > max)
        return Fail(kBadParameter, QStringLiteral("%1 must be between %2 and %3, not %4").arg(name).arg(min).arg(max).arg(value));
    *out = value;
    return true;
}

bool GdalJob::Double(const QString& name, double* out)
{
    bool ok = false;
    const QString text = Text(name);
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return Fail(kBadParameter, QStringLiteral("%1 must be a number, not '%2'").arg(name, text));
    *out = value;
    return true;
}

bool GdalJob::Doubles(const QString& name, int count, std::vector<double>* out)
{
    const QString text = Text(name);
    const QStringList parts = text.split(QRegularExpression(QStringLiteral("[,\\s]+")), Qt::SkipEmptyParts);
    std::vector<double> values;
    for (const QString& part : parts) {
        bool ok = false;
        const double v = part.toDouble(&ok);
        if (!ok || !std::isfinite(v))
            break;
        values.push_back(v);
    }
    if (int(values.size()) != count || parts.size() != count)
        return Fail(kBadParameter, QStringLiteral("%1 must be %2 numbers separated by commas, not '%3'").arg(name).arg(count).arg(text));
    *out = std::move(values);
    return true;
}

bool GdalJob::Bands(const QString& name, int bandCount, std::vector<int>* out)
{
    const QString text = Text(name);
    std::vector<int> bands;
    for (const QString& part : text.split(QRegularExpression(QStringLiteral("[,\\s]+")), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int band = part.toInt(&ok);
        if (!ok)
            return Fail(kBadParameter, QStringLiteral("%1 must list band numbers separated by commas, not '%2'").arg(name, text));
        if (band < 1 || band > bandCount)
            return Fail(kBadParameter, QStringLiteral("%1: band %2 does not exist; the raster has %3 band(s)").arg(name).arg(band).arg(bandCount));
        bands.push_back(band);
    }
    *out = std::move(bands);
    return true;
}

bool GdalJob::OneOf(const QString& name, const QStringList& allowed, QString* out)
{
    const QString text = Text(name);
    for (const QString& a : allowed) {
        if (a.compare(text, Qt::CaseInsensitive) == 0) {
            *out = a;
            return true;
        }
    }
    return Fail(kBadParameter, QStringLiteral("%1 must be one of %2, not '%3'").arg(name, allowed.join(QLatin1String(", ")), text));
}

bool GdalJob::SpatialRef(const QString& name, OGRSpatialReference* out)
{
    out->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (!ReadSpatialReference(Text(name), out))
        return Fail(kBadParameter, QStringLiteral("%1: unknown spatial reference '%2'").arg(name, Text(name)));
    return true;
}

bool GdalJob::DataType(const QString& name, GDALDataType* out)
{
    const QString text = Text(name);
    const GDALDataType type = GDALGetDataTypeByName(text.toLatin1().constData());
    if (type == GDT_Unknown || GDALDataTypeIsComplex(type))
        return Fail(kBadParameter, QStringLiteral("%1 must be Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64, not '%2'").arg(name, text));
    *out = type;
    return true;
}

GDALDatasetUniquePtr GdalJob::OpenRaster(const QString& path)
{
    if (!isVirtualPath(path) && !QFileInfo::exists(path)) {
        Fail(kCannotOpenInput, QStringLiteral("Cannot open raster %1: no such file").arg(path));
        return nullptr;
    }
    const QByteArray name = encoded(path);
    GDALDatasetUniquePtr ds(GDALDataset::Open(name.constData(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
    if (!ds) {
        FailGdal(kCannotOpenInput, QStringLiteral("Cannot open raster %1").arg(path));
        return nullptr;
    }
    m_inputs << canonical(path);
    return ds;
}

GDALDatasetUniquePtr GdalJob::OpenVector(const QString& path)
{
    if (!isVirtualPath(path) && !QFileInfo::exists(path)) {
        Fail(kCannotOpenInput, QStringLiteral("Cannot open vector layer %1: no such file").arg(path));
        return nullptr;
    }
    const QByteArray name = encoded(path);
    GDALDatasetUniquePtr ds(GDALDataset::Open(name.constData(), GDAL_OF_VECTOR | GDAL_OF_VERBOSE_ERROR));
    if (!ds) {
        FailGdal(kCannotOpenInput, QStringLiteral("Cannot open vector layer %1").arg(path));
        return nullptr;
    }
    m_inputs << canonical(path);
    return ds;
}

bool GdalJob::Overlaps(GDALDataset& raster, const QString& path, const QString& what, const double box[4],
                       double overlap[4])
{
    double extent[4];
    double inside[4] = {box[0], box[1], box[2], box[3]};
    if (RasterExtent(raster, extent)) {
        inside[0] = std::max(box[0], extent[0]);
        inside[1] = std::max(box[1], extent[1]);
        inside[2] = std::min(box[2], extent[2]);
        inside[3] = std::min(box[3], extent[3]);
        if (inside[0] >= inside[2] || inside[1] >= inside[3])
            return Fail(kBadParameter, QStringLiteral("%1 %2,%3,%4,%5 does not overlap %6")
                                           .arg(what, formatNumber(box[0]), formatNumber(box[1]), formatNumber(box[2]),
                                                formatNumber(box[3]), path)
                                       + QStringLiteral(" (%1,%2,%3,%4)")
                                             .arg(formatNumber(extent[0]), formatNumber(extent[1]),
                                                  formatNumber(extent[2]), formatNumber(extent[3])));
    }
    if (overlap)
        std::copy(inside, inside + 4, overlap);
    return true;
}

bool RasterExtent(GDALDataset& ds, double box[4])
{
    double gt[6];
    if (ds.GetGeoTransform(gt) != CE_None || gt[2] != 0.0 || gt[4] != 0.0)
        return false;
    const double x0 = gt[0], x1 = gt[0] + gt[1] * ds.GetRasterXSize();
    const double y0 = gt[3], y1 = gt[3] + gt[5] * ds.GetRasterYSize();
    box[0] = std::min(x0, x1);
    box[1] = std::min(y0, y1);
    box[2] = std::max(x0, x1);
    box[3] = std::max(y0, y1);
    return true;
}

bool GdalJob::CheckBand(GDALDataset& raster, const QString& name, int band)
{
    if (band >= 1 && band <= raster.GetRasterCount())
        return true;
    return Fail(kBadParameter, QStringLiteral("%1 %2 does not exist: %3 has %4 band(s)")
                                   .arg(name).arg(band)
                                   .arg(QFile::decodeName(raster.GetDescription()))
                                   .arg(raster.GetRasterCount()));
}

OGRLayer* GdalJob::Layer(GDALDataset& dataset, const QString& path, const QString& layerName)
{
    const QString wanted = Text(layerName);
    if (wanted.isEmpty()) {
        if (dataset.GetLayerCount() > 0)
            return dataset.GetLayer(0);
        Fail(kCannotOpenInput, QStringLiteral("%1 holds no vector layer").arg(path));
        return nullptr;
    }
    const QByteArray name = wanted.toUtf8();
    if (OGRLayer* layer = dataset.GetLayerByName(name.constData()))
        return layer;
    QStringList names;
    for (int i = 0; i < dataset.GetLayerCount(); ++i)
        names << QString::fromUtf8(dataset.GetLayer(i)->GetName());
    Fail(kBadParameter, QStringLiteral("%1: no layer '%2' in %3 (it has %4)")
                            .arg(layerName, wanted, path, names.join(QLatin1String(", "))));
    return nullptr;
}

bool GdalJob::IsInput(const QString& path) const
{
    return m_inputs.contains(canonical(path));
}

const OutputFile* GdalJob::PrepareOutput(const QString& name, OutputKind kind)
{
    const QString text = Text(name);
    if (text.isEmpty()) {
        Fail(kBadParameter, QStringLiteral("%1 needs a value").arg(name));
        return nullptr;
    }
    QString driver, error;
    if (!DriverForPath(text, kind, &driver, &error)) {
        Fail(kBadParameter, error);
        return nullptr;
    }
    if (isVirtualPath(text)) {
        Fail(kBadParameter, QStringLiteral("Cannot write %1: outputs are files on disk").arg(text));
        return nullptr;
    }
    // The folder as written: the system resolves its ".." after any link, as it
    // does for every program that reads the output later.
    const int slash = text.lastIndexOf(QLatin1Char('/'));
    const QString folder = slash < 0 ? QStringLiteral(".") : slash == 0 ? QStringLiteral("/") : text.left(slash);
    const QFileInfo folderInfo(folder);
    if (folderInfo.exists() && !folderInfo.isDir()) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: %2 is not a folder").arg(text, folder));
        return nullptr;
    }
    if (!folderInfo.exists() && !MakeFolders(folder, &error)) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: cannot create folder %2: %3").arg(text, folder, error));
        return nullptr;
    }
    const QString resolvedFolder = SystemPath(folder);
    if (!QFileInfo(resolvedFolder).isWritable()) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: folder %2 is not writable").arg(text, folder));
        return nullptr;
    }
    const QString fileName = text.mid(slash + 1);
    const QString target = QDir::cleanPath(resolvedFolder + QLatin1Char('/') + fileName);
    if (IsInput(target)) {
        Fail(kBadParameter, QStringLiteral("%1 %2 is also an input; choose another output").arg(name, text));
        return nullptr;
    }
    QStringList existing;
    if (!replaceableOutput(target, driver, &existing, &error)) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: %2").arg(text, error));
        return nullptr;
    }
    RemoveStaleStaging(target);
    // Beside the output, so that moving it into place is a rename on one file system.
    auto staging = std::make_unique<QTemporaryDir>(QStringLiteral("%1/%2%3-%4-XXXXXX")
                                                       .arg(resolvedFolder, kStagingPrefix, stagingKey(fileName))
                                                       .arg(qint64(::getpid())));
    if (!staging->isValid()) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: cannot create a file in folder %2: %3")
                                     .arg(text, folder, staging->errorString()));
        return nullptr;
    }
    if (!holdStaging(staging->path())) {
        Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: the run was stopped").arg(text));
        return nullptr; // the staging folder goes with its QTemporaryDir
    }
    m_outputs.push_back(std::make_unique<OutputFile>(text, target, driver, std::move(staging)));
    return m_outputs.back().get();
}

bool GdalJob::Finish()
{
    if (m_errors.FailureCount() > 0) {
        QString message = QStringLiteral("%1 failed: %2").arg(m_config.displayText, Readable(m_errors.Message()));
        if (m_errors.FailureCount() > 1)
            message += QStringLiteral(" (GDAL reported %1 errors)").arg(m_errors.FailureCount());
        return Fail(kProcessingFailed, message);
    }
    for (const std::unique_ptr<OutputFile>& output : m_outputs) {
        QString error;
        if (!output->Commit(&error))
            return Fail(kCannotWriteOutput, error);
    }
    return true;
}

void GdalJob::RemoveOutputs()
{
    m_outputs.clear();
}

QString GdalJob::Readable(QString gdalText) const
{
    for (const std::unique_ptr<OutputFile>& output : m_outputs)
        gdalText.replace(output->WritePath(), output->Path());
    return gdalText;
}

bool GdalJob::Fail(int code, const QString& message)
{
    return m_ctx.Fail(code, message);
}

bool GdalJob::FailGdal(int code, const QString& message)
{
    // GDAL often starts with the file name, which the message already gives.
    // Not static: runs fail concurrently, and a shared expression compiles lazily.
    const QRegularExpression leadingPath(QStringLiteral("^(?:`([^']+)'|(/[^:]+):)\\s+"));
    QString detail = Readable(m_errors.Message());
    const QRegularExpressionMatch m = leadingPath.match(detail);
    if (m.hasMatch() && message.contains(m.captured(1) + m.captured(2)))
        detail.remove(0, m.capturedLength());
    return Fail(code, detail.isEmpty() ? message : QStringLiteral("%1: %2").arg(message, detail));
}

void GdalJob::Progress(double percent, const QString& text)
{
    m_lastPercent = std::max(percent, m_lastPercent);
    m_ctx.Progress(m_lastPercent, text);
}

// ---------------------------------------------------------------------------------
// RasterTarget

bool RasterTarget::Prepare(GdalJob& job, const QString& name, bool allowStaging)
{
    const OutputFile* output = job.PrepareOutput(name, OutputKind::Raster);
    if (!output)
        return false;
    m_path = output->Path();
    m_writePath = output->WritePath();
    QString error; // checked before the run
    m_options.Clear();
    ParseOptionList(job.Text(QString::fromLatin1(kCreationOptions)), &m_options, &error);
    m_driver = RasterWriter(output->Driver(), &m_options);
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(m_driver.toLatin1().constData());
    if (!driver)
        return job.Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: format %2 is not available").arg(m_path, m_driver));
    m_staged = allowStaging && driver->GetMetadataItem(GDAL_DCAP_CREATE) == nullptr;
    return true;
}

QByteArray RasterTarget::ToolFormat() const
{
    return m_staged ? QByteArray("MEM") : m_driver.toLatin1();
}

QByteArray RasterTarget::ToolPath() const
{
    return m_staged ? QByteArray() : encoded(m_writePath);
}

void RasterTarget::AddFormatAndSwitches(const GdalJob& job, ToolArgs& args) const
{
    args << "-of" << ToolFormat();
    if (!m_staged) // else the options go to the copy into the file
        for (int i = 0; i < m_options.Count(); ++i)
            args << "-co" << m_options[i];
    args << job.Switches();
}

GDALDatasetUniquePtr RasterTarget::Create(GdalJob& job, int width, int height, int bands, GDALDataType type)
{
    const QByteArray format = ToolFormat();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.constData());
    GDALDatasetUniquePtr ds(driver ? driver->Create(ToolPath().constData(), width, height, bands, type, m_staged ? nullptr : m_options.List()) : nullptr);
    if (!ds)
        job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create %1").arg(m_path));
    return ds;
}

bool GdalJob::CloseOutput(GDALDatasetUniquePtr& dataset, const QString& path)
{
    const int failuresBefore = Errors().FailureCount();
    dataset.reset();
    if (Errors().FailureCount() > failuresBefore)
        return FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(path));
    return true;
}

bool RasterTarget::Commit(GdalJob& job, GDALDatasetUniquePtr dataset, double from, double to)
{
    if (!dataset)
        return job.Fail(kProcessingFailed, QStringLiteral("Nothing to write to %1").arg(m_path));
    const int failuresBefore = job.Errors().FailureCount();
    if (m_staged) {
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(m_driver.toLatin1().constData());
        GdalProgress progress(job, QStringLiteral("Writing %1").arg(QFileInfo(m_path).fileName()), from, to);
        const QByteArray name = encoded(m_writePath);
        GDALDatasetUniquePtr copy(driver->CreateCopy(name.constData(), dataset.get(), FALSE, m_options.List(),
                                                     &GdalProgress::Function, &progress));
        dataset.reset();
        if (!copy)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(m_path));
    } else {
        dataset.reset(); // closing flushes the last blocks
    }
    if (job.Errors().FailureCount() > failuresBefore)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(m_path));
    return true;
}

// ---------------------------------------------------------------------------------
// ToolArgs

ToolArgs& ToolArgs::operator<<(const char* text)
{
    m_args.emplace_back(text);
    return *this;
}

ToolArgs& ToolArgs::operator<<(const QString& text)
{
    m_args.push_back(text.toUtf8());
    return *this;
}

ToolArgs& ToolArgs::operator<<(const QByteArray& text)
{
    m_args.push_back(text);
    return *this;
}

ToolArgs& ToolArgs::operator<<(double value)
{
    m_args.push_back(QByteArray::number(value, 'g', 17));
    return *this;
}

ToolArgs& ToolArgs::operator<<(const CPLStringList& list)
{
    for (int i = 0; i < list.Count(); ++i)
        m_args.emplace_back(list[i]);
    return *this;
}

char** ToolArgs::Argv()
{
    m_argv.clear();
    for (QByteArray& a : m_args)
        m_argv.push_back(a.data());
    m_argv.push_back(nullptr);
    return m_argv.data();
}

// ---------------------------------------------------------------------------------

namespace {

bool hasParam(const Plugin::AlgoConfig& config, const QString& name)
{
    return std::any_of(config.params.begin(), config.params.end(), [&](const Plugin::Param& p) { return p.name == name; });
}

// What GDAL refuses of the options before anything runs: {parameter, reason}.
QStringList optionProblem(const Plugin::AlgoConfig& config, GdalTool tool, const QJsonObject& params)
{
    const auto text = [&params](const QString& name) { return params.value(name).toString().trimmed(); };
    const QString creation = QString::fromLatin1(kCreationOptions);
    const QString layer = QString::fromLatin1(kLayerCreationOptions);
    for (const Plugin::Param& p : config.params) {
        if (p.direction != 1)
            continue;
        QString problem, name;
        if (p.typeParam.contains(QLatin1String("GeoTIFF")) && !text(creation).isEmpty()) {
            name = creation;
            problem = CreationOptionsProblem(text(p.name), text(creation));
        } else if (p.typeParam.contains(QLatin1String("Shapefile")) && !text(layer).isEmpty()) {
            name = layer;
            problem = LayerCreationOptionsProblem(text(p.name), text(layer));
        }
        if (!problem.isEmpty())
            return {name, problem};
    }
    const QString additional = QString::fromLatin1(kAdditionalOptions);
    const QString problem = SwitchesProblem(tool, text(additional));
    return problem.isEmpty() ? QStringList() : QStringList{additional, problem};
}

} // namespace

void RegisterGdalAlgorithm(Plugin::AlgoConfig config, GdalRunFn run, GdalTool tool)
{
    // Added after the algorithm's own parameters: saved models keep theirs in order.
    for (const Plugin::Param& p : QList<Plugin::Param>(config.params)) {
        if (p.direction != 1)
            continue;
        if (p.typeParam.contains(QLatin1String("GeoTIFF")) && !hasParam(config, kCreationOptions))
            config.params << Optional(InputParam(kCreationOptions, QStringLiteral("string"),
                                                 QStringLiteral("Options of the output format as KEY=VALUE;KEY=VALUE, e.g. "
                                                                "COMPRESS=DEFLATE;TILED=YES; COG=YES writes a .tif as a "
                                                                "cloud-optimised GeoTIFF; empty takes GDAL's defaults")));
        else if (p.typeParam.contains(QLatin1String("Shapefile")) && !hasParam(config, kLayerCreationOptions))
            config.params << Optional(InputParam(kLayerCreationOptions, QStringLiteral("string"),
                                                 QStringLiteral("Layer options of the output format as KEY=VALUE;KEY=VALUE, "
                                                                "e.g. SPATIAL_INDEX=NO; empty takes GDAL's defaults")));
    }
    if (tool != GdalTool::None && !hasParam(config, kAdditionalOptions))
        config.params << Optional(InputParam(kAdditionalOptions, QStringLiteral("string"),
                                             QStringLiteral("More switches of the GDAL utility, as on its command line, "
                                                            "e.g. -r cubic; empty adds none")));
    auto check = [config, tool](const QJsonObject& params) { return optionProblem(config, tool, params); };
    Plugin::AlgorithmRegistry::Instance().Register(
        config,
        [config, run, check](const QJsonObject& params, Plugin::AlgoRunContext& ctx) {
            EnsureGdalRegistered();
            GdalJob job(config, params, ctx);
            job.Progress(0.0, config.displayText);
            bool ok = job.CheckRequired();
            if (ok) {
                const QStringList problem = check(params);
                if (!problem.isEmpty())
                    ok = job.Fail(kBadParameter, QStringLiteral("%1: %2").arg(problem[0], problem[1]));
            }
            if (!ok || !run(job) || !job.Finish()) {
                job.RemoveOutputs();
                return false;
            }
            if (job.LastProgress() < 100.0)
                job.Progress(100.0, QStringLiteral("Done"));
            return true;
        },
        check);
}

int RemoveStaleStaging(const QString& path)
{
    const QFileInfo output(path);
    const QString folder = output.absolutePath();
    const QString key = stagingKey(output.fileName());
    // A folder is read once per process: a batch prepares thousands of outputs in one
    // folder, and what gone processes left there does not grow meanwhile.
    static std::mutex mutex;
    static QHash<QString, QMultiHash<QString, QString>> staleByFolder; // folder -> key -> staging folder
    QStringList stale;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        auto it = staleByFolder.find(folder);
        if (it == staleByFolder.end()) {
            QMultiHash<QString, QString> found;
            const QDir dir(folder);
            for (const QString& name : dir.entryList({kStagingPrefix + QLatin1Char('*')}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
                // .mb-writing-KEY-PID-XXXXXX
                const QStringList parts = name.mid(kStagingPrefix.size()).split(QLatin1Char('-'));
                bool ok = false;
                const qint64 pid = parts.size() == 3 ? parts[1].toLongLong(&ok) : 0;
                if (ok && processIsGone(pid))
                    found.insert(parts[0], dir.filePath(name));
            }
            it = staleByFolder.insert(folder, found);
        }
        stale = it->values(key);
        it->remove(key);
    }
    int removed = 0;
    for (const QString& staging : stale)
        removed += QDir(staging).removeRecursively() ? 1 : 0;
    return removed;
}

void DiscardUnfinishedOutputs()
{
    LiveStaging& live = liveStaging();
    const std::lock_guard<std::mutex> lock(live.mutex);
    live.discarded = true;
    for (const QString& folder : live.folders)
        QDir(folder).removeRecursively();
}

Plugin::AlgoConfig MakeAlgoConfig(const char* category, const char* name, const char* displayText, const char* help,
                                  QList<Plugin::Param> params)
{
    Plugin::AlgoConfig c;
    c.name = QString::fromLatin1(name);
    c.displayText = QString::fromUtf8(displayText);
    c.category = QString::fromLatin1(category);
    c.help = QString::fromUtf8(help);
    c.params = std::move(params);
    return c;
}

} // namespace HostRunner
