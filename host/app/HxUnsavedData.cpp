#include "app/HxUnsavedData.h"

#include "app/HxMain.h"
#include "hx/HxData.h"
#include "hx/HxEditor.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"

#include <algorithm>
#include <string>

std::vector<McHandle<HxData>> hxUnsavedData()
{
    std::vector<McHandle<HxData>> unsaved;
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) {
        auto* data = dynamic_cast<HxData*>(pool->object(i));
        // Hidden objects are made on the way and can be made again.
        if (data && data->isModified() && !data->isIconHidden()) unsaved.emplace_back(data);
    }
    return unsaved;
}

bool hxMayDropUnfinished()
{
    constexpr int kQuit = 0, kCancel = 1;
    std::string lost;
    for (const HxEditor* editor : HxEditor::all()) {
        const McString work = editor->unfinishedWork();
        if (!work.isEmpty()) lost += (lost.empty() ? "" : "; ") + work.str();
    }
    if (lost.empty()) return true;
    const std::string text = "This will be lost: " + lost + ".";
    return HxMessage::getTheMsg()->question(text.c_str(), "Quit", "Cancel", nullptr, kCancel, kCancel) ==
           kQuit;
}

bool hxMayDrop(const std::vector<McHandle<HxData>>& objects)
{
    constexpr int kSave = 0, kCancel = 2;
    std::vector<McHandle<HxData>> changed;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(changed),
                 [](const McHandle<HxData>& data) { return data->isModified(); });
    if (changed.empty()) return true;

    std::string names;
    for (const McHandle<HxData>& data : changed)
        names += std::string(names.empty() ? "\"" : ", \"") + data->getLabel() + "\"";
    const std::string text = "Changes of " + names + " are not saved.";
    const int answer =
        HxMessage::getTheMsg()->question(text.c_str(), "Save", "Discard", "Cancel", kSave, kCancel);
    if (answer != kSave) return answer != kCancel;
    return std::all_of(changed.begin(), changed.end(),
                       [](const McHandle<HxData>& data) { return HxMain::getTheMain()->saveData(data); });
}
