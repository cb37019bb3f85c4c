#pragma once

#include "app/GiQ.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "display/GiViewer.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "tools/GiCrossHairTool.h"

#include <gtest/gtest.h>
#include <tcl.h>

#include <cstdlib>
#include <string>
#include <vector>

/// The pool, the interpreter and the editor of the sub-application, as a script finds them.
class EditorSession : public testing::Test
{
protected:
    static constexpr unsigned long kDims[3] = {5, 4, 3};

    void SetUp() override
    {
        HxMessage::getTheMsg()->setSink([this](const char* text) { console.push_back(text); });
    }
    void TearDown() override
    {
        HxObjectPool::getThePool()->clear();
        HxSubApplication::leaveRunning();
        if (editor()) restoreDefaults();
        HxMessage::getTheMsg()->setSink({});
    }

    HxUniformLabelField3* addLabels(const char* label, const unsigned long* dims = kDims)
    {
        auto* field = new HxUniformLabelField3(dims);
        field->setLabel(label);
        HxObjectPool::getThePool()->addObject(field);
        return field;
    }
    template <class T = unsigned char>
    HxUniformScalarField3* addImage(const char* label, int hostType = 0, const unsigned long* dims = kDims)
    {
        auto* memory = static_cast<T*>(std::calloc(dims[0] * dims[1] * dims[2], sizeof(T)));
        auto* field = new HxUniformScalarField3(dims, hostType, memory, true);
        field->setLabel(label);
        HxObjectPool::getThePool()->addObject(field);
        return field;
    }
    void addMaterials(HxUniformLabelField3* field, int n)
    {
        for (int i = field->materials()->nBundles(); i < n; ++i)
            field->materials()->insert(
                new HxParamBundle(i == 0 ? "Exterior" : ("M" + std::to_string(i)).c_str()));
    }

    /// Runs a line; the result or the message is in `result`.
    int run(const std::string& line)
    {
        Tcl_Interp* interp = HxInterpreter::getTheInterpreter()->tcl();
        const int code = Tcl_Eval(interp, line.c_str());
        result = Tcl_GetStringResult(interp);
        return code;
    }
    std::string eval(const std::string& line)
    {
        EXPECT_EQ(run(line), TCL_OK) << line << ": " << result;
        return result;
    }
    std::string error(const std::string& line)
    {
        EXPECT_EQ(run(line), TCL_ERROR) << line;
        return result;
    }
    static HxGiEditor* editor() { return HxGiSubApplication::instance()->getEditor(); }
    static GiQ* gi() { return editor()->getGi(); }
    /// What outlives the data and would meet the next test.
    static void restoreDefaults()
    {
        for (int i = 0; i < 256; ++i) gi()->lockTissue(i, 0);
        for (int i = 0; i < 3; ++i) gi()->viewers[i]->setOrientation(i);
        gi()->setMaskingEnabled(false);
        gi()->set3dMode(true); // as the toolbox starts
        gi()->setZoomMode(true);
        gi()->crossHair->setVisible(false);
    }

    std::string result;
    std::vector<std::string> console;
};
