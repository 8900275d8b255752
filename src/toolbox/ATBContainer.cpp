#include "toolbox/ATBContainer.h"

namespace Plugin {

ATBContainer::~ATBContainer() { qDeleteAll(m_children); }

} // namespace Plugin
