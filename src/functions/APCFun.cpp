#include "functions/APCFun.h"

namespace Plugin {

// Until the expression engine exists, no text parses.
APCFun* APCFun::Create(const QString&) { return nullptr; }

APCFun::APCFun(const QString& text) : m_text(text) {}
APCFun::~APCFun() = default;
bool APCFun::IsValid() { return false; }
void APCFun::SetModel(APCModel*) {}
QString APCFun::Evaluate() { return QString(); }

} // namespace Plugin
