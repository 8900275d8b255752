#pragma once

// What the GDAL algorithms share: output formats by extension, catalogue helpers,
// per-call error capture, the progress bridge and the checks every run needs.
// Internal to HostRunner.

#include "HostCatalog/AlgoConfig.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <climits>
#include <functional>
#include <memory>
#include <vector>

class OGRLayer;
class OGRSpatialReference;
class QTemporaryDir;

namespace Plugin {
class AlgoRunContext;
}

namespace HostRunner {

// The error codes of every GDAL algorithm.
enum GdalErrorCode {
    kBadParameter = 20,      // a value is missing, malformed or out of range
    kCannotOpenInput = 21,   // an input does not open or lacks what the algorithm needs
    kCannotWriteOutput = 22, // the output cannot be created, replaced or written
    kProcessingFailed = 23,  // GDAL failed while processing valid input
};

// Name filters for the catalogue's file widgets. Plain C strings: registration runs
// during static initialisation, before any QString constant of another file exists.
extern const char* const kRasterInputFilter;
extern const char* const kRasterOutputFilter;
extern const char* const kVectorInputFilter;
extern const char* const kVectorOutputFilter;
extern const char* const kTableOutputFilter;
extern const char* const kVrtOutputFilter;
extern const char* const kReportOutputFilter;

// What an output parameter receives; each kind has its own known extensions.
enum class OutputKind {
    Raster, // .tif, .img, .asc, .png, ... written by GDAL
    Vector, // .shp, .gpkg, .geojson, .csv, ... written by GDAL
    Table,  // .csv or .txt written by the algorithm itself
    Vrt,    // .vrt: a virtual raster naming its sources
    Report, // .json or .txt written by the algorithm itself
};

// The option parameters of the writing algorithms, alike in every one of them. An
// empty value writes exactly what the algorithm writes without it.
extern const char* const kCreationOptions;      // raster outputs: KEY=VALUE;KEY=VALUE
extern const char* const kLayerCreationOptions; // vector outputs: KEY=VALUE;KEY=VALUE
extern const char* const kAdditionalOptions;    // the utility's own switches

// The GDAL utility an algorithm is built on: its option parser reads the algorithm's
// Additional options.
enum class GdalTool {
    None,
    Translate,
    Warp,
    DemProcessing,
    VectorTranslate,
    Rasterize,
    BuildVrt,
    Nearblack,
    Info,
    Grid,
};

// The items of "KEY=VALUE;KEY=VALUE", blanks around them dropped; false with *error
// naming the first item that is not KEY=VALUE.
bool ParseOptionList(const QString& text, CPLStringList* out, QString* error);
// The switches of text as a shell would split them (quotes group words).
CPLStringList SplitSwitches(const QString& text);
// The driver that writes a raster of extension driver with options: a GeoTIFF asked
// for with COG=YES is written by the cloud-optimised GeoTIFF driver, which then gets
// the options without COG.
QString RasterWriter(const QString& driver, CPLStringList* options);
// Why GDAL refuses options for the output at path of the given kind, or empty.
QString CreationOptionsProblem(const QString& path, const QString& text);
QString LayerCreationOptionsProblem(const QString& path, const QString& text);
// Why the utility's parser refuses switches, or empty.
QString SwitchesProblem(GdalTool tool, const QString& text);

// The driver of path's extension for kind (empty for a table the algorithm writes),
// or false with *error telling the known extensions.
bool DriverForPath(const QString& path, OutputKind kind, QString* driver, QString* error);
// Registers GDAL's drivers once per process.
void EnsureGdalRegistered();

// The paths of a "multiFile" value: separated by ';', blanks dropped.
QStringList SplitPaths(const QString& value);

// Catalogue parameters. A file parameter's filter goes into its typeParam.
// The catalogue entry of an algorithm of the given category ("Raster", "Vector").
Plugin::AlgoConfig MakeAlgoConfig(const char* category, const char* name, const char* displayText, const char* help,
                                  QList<Plugin::Param> params);

Plugin::Param InputParam(const QString& name, const QString& type, const QString& description,
                         const QString& filter = QString());
Plugin::Param OutputParam(const QString& name, const QString& type, const QString& description,
                          const QString& filter);
Plugin::Param WithDefault(Plugin::Param param, const QString& defaultValue);
Plugin::Param Optional(Plugin::Param param, const QString& defaultValue = QString());

// Collects the GDAL errors raised on the calling thread while it lives, instead of
// letting GDAL print them, and keeps GDAL's work on that thread meanwhile, so that no
// error is raised where the capture cannot see it. GDAL's handler stack is per thread,
// so concurrent runs do not see each other's errors. Debug messages pass through to
// the previous handler.
class GdalErrorCapture
{
public:
    GdalErrorCapture();
    ~GdalErrorCapture();
    GdalErrorCapture(const GdalErrorCapture&) = delete;
    GdalErrorCapture& operator=(const GdalErrorCapture&) = delete;

    // The first failure's text, the cause of those after it (a block that did not
    // decode, then the file that could not be written), else the last warning's;
    // empty when GDAL said nothing.
    QString Message() const;
    // How many failures were raised so far: compare before and after a call.
    int FailureCount() const { return m_failures; }

private:
    static void CPL_STDCALL Handler(CPLErr level, CPLErrorNum number, const char* message);

    QString m_firstFailure;
    QString m_lastWarning;
    int m_failures = 0;
    QByteArray m_threadsBefore; // this thread's own GDAL_NUM_THREADS, restored at the end
    bool m_hadThreads = false;
};

class GdalJob;
class ToolArgs;

// An output of a run while it is written: GDAL writes WritePath(), inside a hidden
// folder beside Path(), and Commit() moves every file written there (a shapefile's
// sidecars too) to the final folder, the main file last. Until then nothing under
// the final name changes; destroyed uncommitted, it removes what was written.
class OutputFile
{
public:
    // path is the output as given, target the same file as the system resolves it;
    // staging is the hidden folder, which the output owns.
    OutputFile(const QString& path, const QString& target, const QString& driver, std::unique_ptr<QTemporaryDir> staging);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Moves the written files into place, replacing an older output of the same
    // format with all its files. False with *error set when that cannot be done.
    bool Commit(QString* error);

    // Where the output ends up; what messages name.
    const QString& Path() const { return m_path; }
    // Where GDAL (or the algorithm) writes it.
    const QString& WritePath() const { return m_writePath; }
    // The GDAL driver of its extension; empty for a table.
    const QString& Driver() const { return m_driver; }

private:
    QString m_path;
    QString m_target; // where it is published
    QString m_driver;
    QString m_writePath;
    std::unique_ptr<QTemporaryDir> m_staging; // removed with its content
};

// Forwards a GDAL progress (0..1) to the job as [from, to] percent, at most once per
// whole percent. Pass Function() and this to GDAL's *SetProgress / pfnProgress.
class GdalProgress
{
public:
    GdalProgress(GdalJob& job, const QString& text, double from = 0.0, double to = 100.0);

    static int CPL_STDCALL Function(double fraction, const char* message, void* self);
    void Report(double fraction);

private:
    GdalJob& m_job;
    QString m_text;
    double m_from;
    double m_to;
    int m_lastWhole = -1;
};

// Forgets the blocks a pass from top to bottom has left behind, each time the pass
// enters a new row of blocks. GDAL would keep them (up to a twentieth of the memory)
// though the pass never reads them again: every round of a batch would then fault in
// and hold a whole scene. With a dataset, all its bands are forgotten (reading one band
// of a pixel-interleaved file brings the others' blocks along); else the band alone.
// Written blocks are written out when forgotten, as they would be at the end.
class PassedBlocks
{
public:
    explicit PassedBlocks(GDALRasterBand& band, GDALDataset* dataset = nullptr);
    // Before the pass reads or writes rows from y on.
    void At(int y);

private:
    GDALRasterBand& m_band;
    GDALDataset* m_dataset;
    int m_height = 1; // of a block
    int m_every = 1;  // block rows between two forgettings
    int m_row = 0;    // the block row last forgotten above
};

// One run of a GDAL algorithm: its parameters with the catalogue's defaults, its
// error capture, and the checks every algorithm needs. A failing check records a
// code and a message naming the parameter or file in the run context and returns
// false (or null), so algorithms can simply return.
class GdalJob
{
public:
    GdalJob(const Plugin::AlgoConfig& config, const QJsonObject& params, Plugin::AlgoRunContext& ctx);

    // Fails for the first required parameter without a value.
    bool CheckRequired();

    // The trimmed value of name, or its default when the value is empty.
    QString Text(const QString& name) const;
    bool Has(const QString& name) const { return !Text(name).isEmpty(); }
    bool Int(const QString& name, int* out, int min = INT_MIN, int max = INT_MAX);
    bool Double(const QString& name, double* out);
    // count numbers separated by ',' (or blanks).
    bool Doubles(const QString& name, int count, std::vector<double>* out);
    // Band numbers separated by ',' (or blanks), each in 1..bandCount.
    bool Bands(const QString& name, int bandCount, std::vector<int>* out);
    // One of allowed, compared case-insensitively; out gets the allowed spelling.
    bool OneOf(const QString& name, const QStringList& allowed, QString* out);
    // An EPSG code, WKT or PROJ string; files and network look-ups are refused.
    bool SpatialRef(const QString& name, OGRSpatialReference* out);
    bool DataType(const QString& name, GDALDataType* out);

    // Opens an input read-only; remembers its path so no output can overwrite it.
    GDALDatasetUniquePtr OpenRaster(const QString& path);
    GDALDatasetUniquePtr OpenVector(const QString& path);
    // Fails unless box (xmin, ymin, xmax, ymax in raster's coordinates) overlaps the
    // raster at path, as every algorithm whose output extent comes from a parameter or
    // another layer must: else GDAL writes the whole box as no-data. what names the box
    // ("The extent"). overlap, when given, gets the part inside. A raster without a
    // north-up extent passes, and GDAL decides.
    bool Overlaps(GDALDataset& raster, const QString& path, const QString& what, const double box[4],
                  double overlap[4] = nullptr);
    // Fails unless band (taken from parameter name) exists in raster.
    bool CheckBand(GDALDataset& raster, const QString& name, int band);
    // The layer named by parameter layerName, or the first one. Owned by dataset.
    OGRLayer* Layer(GDALDataset& dataset, const QString& path, const QString& layerName);

    // The output of parameter name, ready to be written: its extension is one the host
    // writes for kind, its folder exists (made when missing), it is no input, and what
    // is there already may be replaced. Null (and the job failed) otherwise. Owned by
    // the job. Call after opening the inputs.
    const OutputFile* PrepareOutput(const QString& name, OutputKind kind);

    bool Fail(int code, const QString& message);
    // Fails with GDAL's message appended, when there is one.
    bool FailGdal(int code, const QString& message);
    // Closes a written dataset (which flushes it); a GDAL error while closing means
    // the output at path is incomplete, and fails the job.
    bool CloseOutput(GDALDatasetUniquePtr& dataset, const QString& path);
    const GdalErrorCapture& Errors() const { return m_errors; }
    // Ends a run whose algorithm succeeded: fails it when GDAL reported an error at any
    // point (GDAL's utilities finish with blocks that did not read), else moves the
    // outputs into place.
    bool Finish();
    // Drops the outputs PrepareOutput handed out, so a failed run leaves no half file.
    void RemoveOutputs();

    // The Additional options, split; empty when there are none.
    CPLStringList Switches() const { return SplitSwitches(Text(QString::fromLatin1(kAdditionalOptions))); }

    // Reports progress, never going backwards.
    void Progress(double percent, const QString& text = QString());
    double LastProgress() const { return m_lastPercent; }

private:
    bool IsInput(const QString& path) const;
    // GDAL's text with the outputs' write paths replaced by their final paths.
    QString Readable(QString gdalText) const;

    const Plugin::AlgoConfig& m_config;
    const QJsonObject& m_params;
    Plugin::AlgoRunContext& m_ctx;
    GdalErrorCapture m_errors;
    QStringList m_inputs; // canonical paths
    std::vector<std::unique_ptr<OutputFile>> m_outputs;
    double m_lastPercent = -1.0;
};

// A raster output made with Create when its format can, else built in memory and
// copied into the file by Commit(), for formats such as PNG or AAIGrid that only copy.
class RasterTarget
{
public:
    // Resolves raster output parameter name as GdalJob::PrepareOutput does, and its
    // format. allowStaging false: the caller's utility copies into copy-only formats itself.
    bool Prepare(GdalJob& job, const QString& name, bool allowStaging = true);

    // The final path, for messages.
    const QString& Path() const { return m_path; }
    // What a GDAL utility writes with: the file's format and path, or MEM when staged.
    QByteArray ToolFormat() const;
    QByteArray ToolPath() const;
    // Adds -of and, when the utility writes the file itself, -co for each creation
    // option; then the step's own switches (Additional options), last so that they win.
    void AddFormatAndSwitches(const GdalJob& job, ToolArgs& args) const;
    GDALDatasetUniquePtr Create(GdalJob& job, int width, int height, int bands, GDALDataType type);
    // Writes out a dataset made by Create or by a utility given ToolFormat/ToolPath,
    // and closes it; a staged one is copied with progress in [from, to].
    bool Commit(GdalJob& job, GDALDatasetUniquePtr dataset, double from = 90.0, double to = 100.0);

private:
    QString m_path;
    QString m_writePath;
    QString m_driver;
    CPLStringList m_options; // the creation options
    bool m_staged = false;
};

// The north-up extent of a raster as xmin, ymin, xmax, ymax; false for an
// unreferenced or rotated grid.
bool RasterExtent(GDALDataset& raster, double box[4]);

// Creates the vector dataset of an output from GdalJob::PrepareOutput, in the format
// of its extension; null (and the job failed) when the format cannot be created.
GDALDatasetUniquePtr CreateVectorOutput(GdalJob& job, const OutputFile& output);

// Creates in ds, the dataset of output, a layer named after the output with the
// spatial reference and fields of source and geometries of type; fieldMap gets where
// each field of source went. Null (and the job failed) when the format refuses.
// Owned by ds.
OGRLayer* CreateLayerLike(GdalJob& job, GDALDataset& ds, const OutputFile& output, OGRLayer& source,
                          OGRwkbGeometryType type, std::vector<int>* fieldMap);

// Layer creation options a vector format needs for our outputs (CSV keeps geometry),
// then the job's Layer creation options, which win.
CPLStringList LayerOptionsFor(const GdalJob& job, const QString& driver);

// Runs a GDAL utility's arguments; owns the strings. Values may be QStrings (UTF-8).
class ToolArgs
{
public:
    ToolArgs& operator<<(const char* text);
    ToolArgs& operator<<(const QString& text);
    ToolArgs& operator<<(const QByteArray& text);
    ToolArgs& operator<<(double value);
    ToolArgs& operator<<(const CPLStringList& list);
    // A null-terminated argv for the *OptionsNew functions; valid while this lives.
    char** Argv();

private:
    std::vector<QByteArray> m_args;
    std::vector<char*> m_argv;
};

using GdalRunFn = std::function<bool(GdalJob& job)>;

// Registers an algorithm whose runs get a GdalJob: GDAL's drivers registered, errors
// captured for the call, required parameters checked, the outputs moved into place
// by GdalJob::Finish, and 100 % reported on success. Each raster output gets the
// optional Creation options, each vector output Layer creation options, and an
// algorithm built on a tool Additional options, all after the given parameters;
// they are checked before the run as the registry's check does.
void RegisterGdalAlgorithm(Plugin::AlgoConfig config, GdalRunFn run, GdalTool tool = GdalTool::None);

} // namespace HostRunner
