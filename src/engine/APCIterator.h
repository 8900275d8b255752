#pragma once

#include "model/APCProcess.h"

namespace Plugin {

// A process that the run calls again and again until it reports its end.
class APCIterator : public APCProcess
{
public:
    enum State { NotRun = 0, Iterating = 1, Ended = 2 };

    APCObject* Clone() override;
    APCObjectDialog* CreateDialog(QWidget* parent) override;
    // Always writes its own Process element, whatever withElement says.
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;

    bool IsEnded() const { return m_iteratorState == Ended; }
    int GetIteratorState() const { return m_iteratorState; }

protected:
    void CopyIteratorFrom(const APCIterator& other);
    void SetIteratorState(int state) { m_iteratorState = state; }

private:
    // Written on the pool thread of the step, read by the control after it ends.
    int m_iteratorState = NotRun;
};

} // namespace Plugin
