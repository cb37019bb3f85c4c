#pragma once

#include "app/HxMain.h"
#include "hx/HxFileAccess.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxUniformLabelField3.h"
#include "io/HxFileFormats.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QtTest/QTest>

#include <memory>
#include <string>
#include <vector>

/// A main window on the offscreen platform, an empty pool, and every question and error written down.
class MainWindow : public testing::Test
{
protected:
    MainWindow()
    {
        hxRegisterFileFormats();
        HxSettingsMgr::useMemoryStore();
        openWindow();
        HxMessage::setDialogHandler([this](const HxDialogRequest& request) {
            dialogs.push_back(request.text);
            return answer >= 0 ? answer : request.escapeIndex;
        });
    }
    ~MainWindow() override
    {
        HxObjectPool::getThePool()->clear();
        window.reset();
        HxSettingsMgr::useMemoryStore();
    }

    void openWindow()
    {
        window.reset();
        window = std::make_unique<HxMain>();
        HxMessage::setSink([](const char*) {});
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    /// A label field of 2 x 3 x 4 voxels in the pool.
    HxUniformLabelField3* addLabels(const char* name)
    {
        const unsigned long dims[3] = {2, 3, 4};
        auto* labels = new HxUniformLabelField3(dims);
        labels->setLabel(name);
        HxObjectPool::getThePool()->addObject(labels);
        return labels;
    }

    /// As the editor announces an edit.
    static void editLabels(HxField3* labels) { labels->touchMinMax(0, -1, 0); }

    QString path(const char* name) const { return folder.filePath(name); }

    template <class Widget>
    Widget* child(const char* name) const
    {
        auto* found = window->findChild<Widget*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    QTemporaryDir folder;
    std::unique_ptr<HxMain> window;
    std::vector<std::string> dialogs; // texts of the dialogs that came
    int answer = -1;                  // button of the next dialogs; -1: escape
};
