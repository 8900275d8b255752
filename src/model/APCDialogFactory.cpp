#include "model/APCDialogFactory.h"

#include "model/SoftAssert.h"

namespace Plugin {

APCDialogFactory* APCDialogFactory::Instance()
{
    static APCDialogFactory instance;
    return &instance;
}

APCObjectDialog* APCDialogFactory::CreateDialog(Kind kind, APCObject* object, QWidget* parent) const
{
    MB_ASSERT(kind >= 0 && kind < KindCount && object, return nullptr);
    return m_dialogs[kind] ? m_dialogs[kind](object, parent) : nullptr;
}

DataTypeWidget* APCDialogFactory::CreateWidget(APCVar* var) const
{
    MB_ASSERT(var, return nullptr);
    return m_widget ? m_widget(var) : nullptr;
}

void APCDialogFactory::RegisterDialog(Kind kind, DialogMaker maker)
{
    MB_ASSERT(kind >= 0 && kind < KindCount, return);
    m_dialogs[kind] = std::move(maker);
}

void APCDialogFactory::RegisterWidget(WidgetMaker maker) { m_widget = std::move(maker); }

} // namespace Plugin
