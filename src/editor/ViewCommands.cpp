// The zoom commands of a model window; the zoom steps come with the view
// commands' work.
#include "editor/FullCommand.h"
#include "editor/ZoomFixedZoomInCommand.h"
#include "editor/ZoomFixedZoomOutCommand.h"
#include "editor/ZoomToNativeResolutionCommand.h"

namespace Plugin {

void FullCommand::OnClick() {}
void ZoomToNativeResolutionCommand::OnClick() {}
void ZoomFixedZoomInCommand::OnClick() {}
void ZoomFixedZoomOutCommand::OnClick() {}

} // namespace Plugin
