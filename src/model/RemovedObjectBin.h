#pragma once

#include <boost/signals2/connection.hpp>

#include <memory>
#include <vector>

namespace Plugin {

class APCModel;
class APCObject;

// The owner that a model without a window needs: takes what the model's three
// ...Removed signals hand over and deletes it when the bin dies. Deleting late
// rather than on receipt keeps the object valid for every other listener of the
// same signal, whatever their order. Declare it after the model it serves.
class RemovedObjectBin
{
public:
    explicit RemovedObjectBin(APCModel& model);
    ~RemovedObjectBin();

    int Size() const { return static_cast<int>(m_objects.size()); }

private:
    std::vector<std::unique_ptr<APCObject>> m_objects;
    boost::signals2::scoped_connection m_processes;
    boost::signals2::scoped_connection m_vars;
    boost::signals2::scoped_connection m_arrows;
};

} // namespace Plugin
