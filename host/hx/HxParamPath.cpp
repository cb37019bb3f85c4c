#include "hx/HxParamPath.h"

#include "hx/HxParamBundle.h"

#include <tcl.h>

#include <string>
#include <vector>

namespace {

/// The steps between the slashes; empty ones (a slash at an end, two in a row) do not count.
std::vector<std::string> stepsOf(const char* path)
{
    std::vector<std::string> steps;
    std::string step;
    for (const char* c = path ? path : ""; *c; c++) {
        if (*c != '/') {
            step += *c;
        } else if (!step.empty()) {
            steps.push_back(step);
            step.clear();
        }
    }
    if (!step.empty()) steps.push_back(step);
    return steps;
}

McString listOfNames(const HxParamBundle& bundle)
{
    std::vector<const char*> names;
    for (int i = 0; i < bundle.nParameters(); i++) names.push_back(bundle.parameter(i)->getName());
    for (int i = 0; i < bundle.nBundles(); i++) names.push_back(bundle.bundle(i)->getName());
    char* merged = Tcl_Merge(static_cast<int>(names.size()), names.data());
    const McString list(merged);
    Tcl_Free(merged);
    return list;
}

McString nameText(const std::string& name)
{
    return McString("\"") + McString(name) + "\"";
}

bool nameIsLegal(const std::string& name)
{
    return HxParamBase::cleanName(name.c_str()).length() > 0;
}

} // namespace

bool hxReadParameter(const HxParamBundle& root, const char* path, McString& result)
{
    const HxParamBundle* bundle = &root;
    const std::vector<std::string> steps = stepsOf(path);
    for (std::size_t i = 0; i < steps.size(); i++) {
        HxParamBase* entry = bundle->find(steps[i].c_str());
        if (!entry) {
            result = McString("no parameter ") + nameText(path);
            return false;
        }
        if (HxParameter* value = entry->asParameter()) {
            if (i + 1 < steps.size()) {
                result = nameText(steps[i]) + " is a value and holds no " + nameText(steps[i + 1]);
                return false;
            }
            result = value->text();
            return true;
        }
        bundle = entry->asBundle();
    }
    result = listOfNames(*bundle);
    return true;
}

bool hxWriteParameter(HxParamBundle& root, const char* path, const char* text, McString& error)
{
    const std::vector<std::string> steps = stepsOf(path);
    if (steps.empty()) {
        error = "a value needs a name";
        return false;
    }

    // Everything is checked before the first bundle is made.
    HxParamBase* entry = &root;
    for (const std::string& step : steps) {
        if (!nameIsLegal(step)) {
            error = nameText(step) + " has no letter or digit that a parameter name can keep";
            return false;
        }
        if (!entry) continue;
        if (!entry->asBundle()) {
            error = McString("\"") + entry->getName() + "\" is a value and holds no " + nameText(step);
            return false;
        }
        entry = entry->asBundle()->find(step.c_str());
    }
    if (entry && entry->asBundle()) {
        error = nameText(path) + " is a bundle, not a value";
        return false;
    }
    if (entry) {
        if (entry->asParameter()->setText(text)) return true;
        error = nameText(path) + " takes " +
                (entry->asParameter()->primType() == HxParameter::kInt ? "whole numbers" : "numbers") +
                ", not " + nameText(text);
        return false;
    }

    HxParamBundle* bundle = &root;
    for (std::size_t i = 0; i + 1 < steps.size(); i++) bundle = bundle->bundle(steps[i].c_str(), 1);
    auto* value = new HxParameter(steps.back().c_str());
    value->setTextOfAnyCode(text);
    bundle->insert(value);
    return true;
}
