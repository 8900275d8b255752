#include "engine/ModelAlgo.h"
#include "engine/ModelInfoAlgo.h"

#include "engine/APCModelFile.h"
#include "engine/STModelAlgoData.h"

#include <QFileInfo>

#include <memory>

namespace Plugin {

namespace {

constexpr int kHeadlessError = 100;

// The record in the slot, or null when the slot holds nothing or something else.
const STModelAlgoData* record(boost::any& slot)
{
    return boost::any_cast<STModelAlgoData>(&slot);
}

} // namespace

bool ModelInfoAlgo::Execute()
{
    const STModelAlgoData* in = record(GetParams());
    if (!in) {
        SetErrorInfo(kHeadlessError, QString());
        return false;
    }
    const STModelAlgoData data = *in;
    if (data.file.isEmpty() || !QFileInfo::exists(data.file))
        return false;
    auto step = std::make_unique<APCModelFile>();
    step->SetModelPath(data.file);
    STModelAlgoData result;
    result.file = data.file;
    for (const APCParameter& p : step->GetParameters())
        result.params.append({p.name, p.description, p.type, p.typeParam, QString()});
    SetParams(result);
    return true;
}

bool ModelAlgo::Execute()
{
    const STModelAlgoData* in = record(GetParams());
    if (!in) {
        SetErrorInfo(kHeadlessError, QString());
        return false;
    }
    const STModelAlgoData data = *in;
    if (data.file.isEmpty() || !QFileInfo::exists(data.file)) {
        SetErrorInfo(kHeadlessError, QString());
        return false;
    }
    auto step = std::make_unique<APCModelFile>();
    step->SetModelPath(data.file);
    if (data.params.size() != step->GetParameters().size()) {
        SetErrorInfo(kHeadlessError, QString());
        return false;
    }
    for (APCParameter& p : step->GetParameters()) {
        const STModelAlgoParam* match = nullptr;
        for (const STModelAlgoParam& given : data.params)
            if (given.name == p.name) {
                match = &given;
                break;
            }
        if (!match) {
            SetErrorInfo(kHeadlessError, QString());
            return false;
        }
        p.value = match->value;
    }
    boost::signals2::scoped_connection forward = step->Progress.connect(
        [this](double percent, const QString& text, void* user) {
            Progress(percent, text, user);
            return 0;
        });
    step->Execute();
    forward.disconnect();
    step.reset();
    Progress(100.0, QString(), nullptr);
    return true;
}

} // namespace Plugin
