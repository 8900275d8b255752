#pragma once

#include <QString>

namespace Plugin {

// The settings a parameter's typeParam JSON text gives its widget, e.g.
// {"direction":"1","filter":"GeoTIFF (*.tif *.tiff);;All files (*)"}.
class DataTypeParam
{
public:
    // Reads text; empty text, bad JSON or a non-object give the defaults.
    static DataTypeParam Parse(const QString& text);

    // True when "direction" is "1": the value is written, not read.
    bool IsOutput() const { return m_output; }
    // The file dialog's name filters in Qt's ";;" form; empty for all files.
    QString GetNameFilter() const { return m_nameFilter; }

private:
    bool m_output = false;
    QString m_nameFilter;
};

} // namespace Plugin
