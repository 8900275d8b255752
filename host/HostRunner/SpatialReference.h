#pragma once

class OGRSpatialReference;
class QString;

namespace HostRunner {

// Reads a spatial reference the way the algorithms take one: an EPSG code (a bare
// number is one), WKT or a PROJ string, never a file or a network resource.
// Returns false when GDAL cannot read it; CPLGetLastErrorMsg() then says why.
bool ReadSpatialReference(const QString& text, OGRSpatialReference* srs);

} // namespace HostRunner
