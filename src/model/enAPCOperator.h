#pragma once

namespace Plugin {

// The kind of change a model reports to its views.
enum enAPCOperator {
    APCOperator_Add = 0,    // the object joined the model
    APCOperator_Delete = 1, // the object left the model; the receiver destroys it
    APCOperator_Update = 2  // the object changed
};

} // namespace Plugin
