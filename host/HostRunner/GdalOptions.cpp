// The option parameters of the writing algorithms, and how GDAL judges them before
// a run: creation options against the driver's own list, a utility's switches by
// the utility's own parser.

#include "HostRunner/GdalSupport.h"

#include <cpl_minixml.h>
#include <gdal_utils.h>

#include <memory>

namespace HostRunner {

const char* const kCreationOptions = "Creation options";
const char* const kLayerCreationOptions = "Layer creation options";
const char* const kAdditionalOptions = "Additional options";

namespace {

// Keeps what GDAL says on this thread while it lives, every message in order.
class MessageCollector
{
public:
    MessageCollector() { CPLPushErrorHandlerEx(&MessageCollector::Handler, this); }
    ~MessageCollector() { CPLPopErrorHandler(); }
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    QString Text() const { return m_messages.join(QLatin1String("; ")); }

private:
    static void CPL_STDCALL Handler(CPLErr level, CPLErrorNum, const char* message)
    {
        auto* self = static_cast<MessageCollector*>(CPLGetErrorHandlerUserData());
        if (self && (level == CE_Warning || level == CE_Failure || level == CE_Fatal) && message)
            self->m_messages << QString::fromUtf8(message).trimmed();
    }
    QStringList m_messages;
};

// A layer creation option checked against the driver's list, in GDAL's own words;
// GDAL does this only inside CreateLayer, and there only as a warning.
QString layerOptionProblem(const char* list, const char* driverName, const char* key, const char* value)
{
    CPLXMLTreeCloser tree(CPLParseXMLString(list ? list : "<LayerCreationOptionList/>"));
    if (!tree)
        return {};
    for (CPLXMLNode* option = tree.get()->psChild; option; option = option->psNext) {
        if (option->eType != CXT_Element || !EQUAL(option->pszValue, "Option"))
            continue;
        const char* name = CPLGetXMLValue(option, "name", "");
        const char* alias = CPLGetXMLValue(option, "alias", "");
        if (!EQUAL(name, key) && !EQUAL(alias, key))
            continue;
        const char* type = CPLGetXMLValue(option, "type", "");
        if (EQUAL(type, "string-select")) {
            for (CPLXMLNode* choice = option->psChild; choice; choice = choice->psNext) {
                if (choice->eType != CXT_Element || !EQUAL(choice->pszValue, "Value"))
                    continue;
                if (EQUAL(CPLGetXMLValue(choice, nullptr, ""), value) || EQUAL(CPLGetXMLValue(choice, "alias", "\x01"), value))
                    return {};
            }
            return QStringLiteral("'%1' is an unexpected value for %2 layer creation option of type string-select")
                .arg(QString::fromUtf8(value), QString::fromUtf8(name));
        }
        if (EQUAL(type, "boolean") && !(EQUAL(value, "YES") || EQUAL(value, "NO") || EQUAL(value, "TRUE")
                                       || EQUAL(value, "FALSE") || EQUAL(value, "ON") || EQUAL(value, "OFF")))
            return QStringLiteral("'%1' is an unexpected value for %2 layer creation option of type boolean")
                .arg(QString::fromUtf8(value), QString::fromUtf8(name));
        if (EQUAL(type, "int") || EQUAL(type, "integer")) {
            bool ok = false;
            QString::fromUtf8(value).toLongLong(&ok);
            if (!ok)
                return QStringLiteral("'%1' is an unexpected value for %2 layer creation option of type int")
                    .arg(QString::fromUtf8(value), QString::fromUtf8(name));
        }
        return {};
    }
    return QStringLiteral("driver %1 does not support layer creation option %2").arg(QString::fromUtf8(driverName), QString::fromUtf8(key));
}

// The switch an algorithm sets itself from its output, which no text may change.
const char* ownedSwitch(GdalTool tool)
{
    switch (tool) {
    case GdalTool::VectorTranslate:
        return "-f";
    case GdalTool::Info:
    case GdalTool::None:
        return nullptr;
    default:
        return "-of";
    }
}

// Parses argv with a utility's options constructor; true when it accepts them.
template <typename T, typename Ctor, typename Free>
bool parses(char** argv, Ctor make, Free free)
{
    T* options = make(argv, nullptr);
    if (!options)
        return false;
    free(options);
    return true;
}

bool toolAccepts(GdalTool tool, char** argv)
{
    switch (tool) {
    case GdalTool::Translate:
        return parses<GDALTranslateOptions>(argv, GDALTranslateOptionsNew, GDALTranslateOptionsFree);
    case GdalTool::Warp:
        return parses<GDALWarpAppOptions>(argv, GDALWarpAppOptionsNew, GDALWarpAppOptionsFree);
    case GdalTool::DemProcessing:
        return parses<GDALDEMProcessingOptions>(argv, GDALDEMProcessingOptionsNew, GDALDEMProcessingOptionsFree);
    case GdalTool::VectorTranslate:
        return parses<GDALVectorTranslateOptions>(argv, GDALVectorTranslateOptionsNew, GDALVectorTranslateOptionsFree);
    case GdalTool::Rasterize:
        return parses<GDALRasterizeOptions>(argv, GDALRasterizeOptionsNew, GDALRasterizeOptionsFree);
    case GdalTool::BuildVrt:
        return parses<GDALBuildVRTOptions>(argv, GDALBuildVRTOptionsNew, GDALBuildVRTOptionsFree);
    case GdalTool::Nearblack:
        return parses<GDALNearblackOptions>(argv, GDALNearblackOptionsNew, GDALNearblackOptionsFree);
    case GdalTool::Info:
        return parses<GDALInfoOptions>(argv, GDALInfoOptionsNew, GDALInfoOptionsFree);
    case GdalTool::Grid:
        return parses<GDALGridOptions>(argv, GDALGridOptionsNew, GDALGridOptionsFree);
    case GdalTool::None:
        break;
    }
    return true;
}

// The GDAL driver an output path's extension picks, or empty when it picks none:
// the output's own check then names the extensions the host writes.
QString driverOfPath(const QString& path, OutputKind kind)
{
    QString driver, error;
    return DriverForPath(path, kind, &driver, &error) ? driver : QString();
}

} // namespace

bool ParseOptionList(const QString& text, CPLStringList* out, QString* error)
{
    for (const QString& part : text.split(QLatin1Char(';'))) {
        const QString item = part.trimmed();
        if (item.isEmpty())
            continue;
        const int eq = item.indexOf(QLatin1Char('='));
        if (eq <= 0) {
            *error = QStringLiteral("'%1' is not KEY=VALUE; separate options with ';'").arg(item);
            return false;
        }
        out->SetNameValue(item.left(eq).trimmed().toUtf8().constData(), item.mid(eq + 1).trimmed().toUtf8().constData());
    }
    return true;
}

CPLStringList SplitSwitches(const QString& text)
{
    const QByteArray bytes = text.trimmed().toUtf8();
    return CPLStringList(CSLTokenizeString2(bytes.constData(), " \t\n", CSLT_HONOURSTRINGS), TRUE);
}

QString RasterWriter(const QString& driver, CPLStringList* options)
{
    const char* cog = options->FetchNameValue("COG");
    if (driver != QLatin1String("GTiff") || !cog || !CPLTestBool(cog))
        return driver;
    options->SetNameValue("COG", nullptr);
    return QStringLiteral("COG");
}

QString CreationOptionsProblem(const QString& path, const QString& text)
{
    CPLStringList options;
    QString error;
    if (!ParseOptionList(text, &options, &error))
        return error;
    const QString extensionDriver = driverOfPath(path, OutputKind::Raster);
    if (extensionDriver.isEmpty() || options.Count() == 0)
        return {};
    const QString writer = RasterWriter(extensionDriver, &options);
    EnsureGdalRegistered();
    GDALDriverH driver = GDALGetDriverByName(writer.toLatin1().constData());
    if (!driver)
        return QStringLiteral("format %1 is not available").arg(writer);
    MessageCollector messages;
    if (GDALValidateCreationOptions(driver, options.List()))
        return {};
    const QString reason = messages.Text();
    return reason.isEmpty() ? QStringLiteral("driver %1 refuses them").arg(writer) : reason;
}

QString LayerCreationOptionsProblem(const QString& path, const QString& text)
{
    CPLStringList options;
    QString error;
    if (!ParseOptionList(text, &options, &error))
        return error;
    const QString driverName = driverOfPath(path, OutputKind::Vector);
    if (driverName.isEmpty() || options.Count() == 0)
        return {};
    EnsureGdalRegistered();
    const QByteArray name = driverName.toLatin1();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(name.constData());
    if (!driver)
        return QStringLiteral("format %1 is not available").arg(driverName);
    const char* list = driver->GetMetadataItem(GDAL_DS_LAYER_CREATIONOPTIONLIST);
    QStringList problems;
    for (int i = 0; i < options.Count(); ++i) {
        char* key = nullptr;
        const char* value = CPLParseNameValue(options[i], &key);
        const QString problem = layerOptionProblem(list, name.constData(), key ? key : "", value ? value : "");
        CPLFree(key);
        if (!problem.isEmpty())
            problems << problem;
    }
    return problems.join(QLatin1String("; "));
}

QString SwitchesProblem(GdalTool tool, const QString& text)
{
    if (tool == GdalTool::None || text.trimmed().isEmpty())
        return {};
    CPLStringList argv = SplitSwitches(text);
    if (const char* owned = ownedSwitch(tool))
        for (int i = 0; i < argv.Count(); ++i)
            if (EQUAL(argv[i], owned))
                return QStringLiteral("%1 cannot be given: the output's extension picks the format").arg(QString::fromLatin1(owned));
    EnsureGdalRegistered();
    MessageCollector messages;
    if (toolAccepts(tool, argv.List()))
        return {};
    const QString reason = messages.Text();
    return reason.isEmpty() ? QStringLiteral("the options are refused") : reason;
}

} // namespace HostRunner
