#pragma once

#include "engine/APCFileIterator.h"

namespace Plugin {

// A file iterator whose default filter lists raster data.
class APCRasterFileIterator : public APCFileIterator
{
public:
    APCRasterFileIterator();

    APCObject* Clone() override;
    APCObjectDialog* CreateDialog(QWidget* parent) override;
};

} // namespace Plugin
