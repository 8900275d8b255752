#include "engine/APCVectorFileIterator.h"

#include <QCoreApplication>

namespace Plugin {

APCVectorFileIterator::APCVectorFileIterator()
{
    SetClass(QStringLiteral("VectorFileIterator"));
    for (APCParameter& p : GetParameters())
        if (p.name == QLatin1String("strFilter"))
            p.value = QCoreApplication::translate("APCVectorFileIterator", "{\"Out File\":\"*.shp;*.000\"}");
    RefreshOutputs();
}

APCObject* APCVectorFileIterator::Clone()
{
    auto* copy = new APCVectorFileIterator;
    copy->CopyFileIteratorFrom(*this);
    return copy;
}

// The iterator dialog comes with the editor's dialogs.
APCObjectDialog* APCVectorFileIterator::CreateDialog(QWidget*) { return nullptr; }

} // namespace Plugin
