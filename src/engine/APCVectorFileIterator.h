#pragma once

#include "engine/APCFileIterator.h"

namespace Plugin {

// A file iterator whose default filter lists vector data.
class APCVectorFileIterator : public APCFileIterator
{
public:
    APCVectorFileIterator();

    APCObject* Clone() override;
    APCObjectDialog* CreateDialog(QWidget* parent) override;
};

} // namespace Plugin
