#pragma once

#include "HostCatalog/Param.h"

namespace Plugin {

// A catalogue parameter plus the value the model gives it: a literal, empty, or a
// var reference "%id%".
class APCParameter : public Param
{
public:
    APCParameter() = default;
    // Copies the catalogue entry; the value starts as its default.
    explicit APCParameter(const Param& p) : Param(p), value(p.defaultValue) {}
    APCParameter(const APCParameter&) = default;
    APCParameter& operator=(const APCParameter&) = default;
    ~APCParameter() override = default;

    // Parameters are the same parameter when their names are equal.
    bool operator==(const APCParameter& o) const { return name == o.name; }

    QString value;
};

} // namespace Plugin
