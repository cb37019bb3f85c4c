#include "hx/HxCompModule.h"
#include "hx/HxInterpreter.h"
#include "hx/HxLineSet.h"
#include "hx/HxObjectPool.h"
#include "hx/HxPortDoIt.h"
#include "hx/HxPortIntTextN.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"
#include "hx/HxWorkArea.h"
#include "mc/McException.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr unsigned long kDims[3] = {3, 2, 2};

HxObjectPool& pool()
{
    return *HxObjectPool::getThePool();
}

template <class T>
T* added(T* object, const char* label)
{
    object->setLabel(label);
    pool().addObject(object);
    return object;
}

HxUniformScalarField3* newImage(const char* label)
{
    return added(new HxUniformScalarField3(kDims, kMcShort), label);
}

HxUniformLabelField3* newLabels(const char* label)
{
    return added(new HxUniformLabelField3(kDims), label);
}

/// Writes down what the pool tells, and what is true at that time.
struct PoolLog : QObject
{
    std::string text;

    PoolLog()
    {
        connect(&pool(), &HxObjectPool::objectAdded, this, [this](HxObject* o) {
            text += std::string("+") + o->getLabel() + (pool().contains(o) ? " " : "! ");
        });
        connect(&pool(), &HxObjectPool::objectRemoved, this, [this](HxObject* o) {
            text += std::string("-") + o->getLabel() + (pool().contains(o) ? "! " : " ");
        });
        connect(&pool(), &HxObjectPool::objectRenamed, this, [this](HxObject* o, const char* old) {
            text += std::string(old) + ">" + o->getLabel() + " ";
        });
    }
};

class HxPool : public testing::Test
{
protected:
    ~HxPool() override { pool().clear(); }
};

/// Writes down its steps, in capitals where the input is new or the button was pressed.
class TestModule : public HxCompModule
{
public:
    explicit TestModule(McTypeId type = McTypeId::of<HxRegScalarField3>()) : HxCompModule(type) {}

    HxPortIntTextN amount{this, "amount"};
    HxPortDoIt action{this};
    std::string log;
    bool fails = false;

    void update() override { log += portData.isNew() ? "U" : "u"; }
    void compute() override
    {
        log += action.wasHit() ? "C" : "c";
        if (fails) {
            HxWorkArea::getTheWorkArea()->busyOn("left open");
            throw McException("It broke.");
        }
    }
};

/// Takes its input and itself out of the pool, and tells whether it still was there afterwards.
class LeavingModule : public HxCompModule
{
public:
    LeavingModule(bool& goneFlag, bool& thereFlag)
        : HxCompModule(McTypeId::of<HxRegScalarField3>()), gone(goneFlag), wasThere(thereFlag)
    {
    }
    ~LeavingModule() override { gone = true; }

    void compute() override
    {
        pool().removeObject(portData.source());
        // Not read through this module, which may not be there any more.
        const bool& isGone = gone;
        bool& isThere = wasThere;
        pool().removeObject(this);
        isThere = !isGone;
    }

private:
    bool& gone;
    bool& wasThere;
};

} // namespace

TEST_F(HxPool, TellsInOrderAndAfterTheChange)
{
    PoolLog log;
    HxObject* a = newImage("a");
    HxObject* b = newImage("b");
    pool().addObject(a);
    b->setLabel("c");
    EXPECT_EQ(pool().object(0), a);
    EXPECT_EQ(pool().object(1), b);
    EXPECT_EQ(pool().size(), 2) << "a member is not added twice";
    EXPECT_EQ(pool().find("c"), b);
    pool().removeObject(a);
    EXPECT_EQ(log.text, "+a +b b>c -a ");
    EXPECT_EQ(pool().object(1), nullptr);
}

TEST_F(HxPool, WalksByIndexSurviveRemoval)
{
    for (const char* name : {"a", "b", "c", "d"}) newImage(name)->hideIcon();
    std::string seen;
    for (int i = 0; i < pool().size(); i++) {
        seen += pool().object(i)->getLabel();
        if (seen == "a") pool().removeObject(pool().find("b"));
    }
    EXPECT_EQ(seen, "acd");
}

TEST_F(HxPool, KeepsOneReferenceAndDropsItAfterTheNotice)
{
    struct Watched : HxLineSet
    {
        bool& gone;
        explicit Watched(bool& flag) : gone(flag) {}
        ~Watched() override { gone = true; }
    };
    bool gone = false;
    bool aliveInSignal = false;
    auto* object = added(new Watched(gone), "watched");
    QObject context;
    QObject::connect(&pool(), &HxObjectPool::objectRemoved, &context, [&] { aliveInSignal = !gone; });
    pool().removeObject(object);
    EXPECT_TRUE(aliveInSignal);
    EXPECT_TRUE(gone);
}

TEST_F(HxPool, LabelsAreUniqueAmongObjectsAndCommands)
{
    const struct
    {
        const char* wanted;
        const char* given;
    } cases[] = {
        {"a.nrrd", "a.nrrd"}, {"a.nrrd", "a2.nrrd"},     {"a.nrrd", "a3.nrrd"},  {"gi", "gi"},
        {"gi", "gi2"},        {"puts", "puts2"},         {".hidden", ".hidden"}, {".hidden", ".hidden2"},
        {"a::b", "a__b"},     {"two words", "two words"}};
    for (const auto& c : cases) EXPECT_STREQ(newImage(c.wanted)->getLabel(), c.given);

    HxObject* second = pool().find("a2.nrrd");
    second->setLabel("a.nrrd");
    EXPECT_STREQ(second->getLabel(), "a2.nrrd") << "its own label is free for it";
    pool().removeObject(pool().find("a.nrrd"));
    EXPECT_STREQ(newImage("a.nrrd")->getLabel(), "a.nrrd") << "a removed object frees its label";

    McString result;
    EXPECT_EQ(HxInterpreter::getTheInterpreter()->eval("llength [info commands puts]", result), TCL_OK);
    EXPECT_EQ(HxInterpreter::getTheInterpreter()->eval("{two words} label", result), TCL_OK);
    EXPECT_EQ(result, "two words");
}

TEST_F(HxPool, ALabelStaysTakenWhenAScriptRedefinesItsCommand)
{
    newImage("shadowed");
    McString result;
    HxInterpreter::getTheInterpreter()->eval("proc shadowed {} {}; rename shadowed {}", result);
    EXPECT_STREQ(newImage("shadowed")->getLabel(), "shadowed2");
    HxLineSet onTheStack;
    onTheStack.setLabel("stacked");
    EXPECT_EQ(HxInterpreter::getTheInterpreter()->eval("stacked label", result), TCL_OK)
        << "an object that nobody counts survives its own command";
}

TEST(HxComposeLabel, ReplacesTheLastSuffix)
{
    EXPECT_EQ(HxBase::composeLabel("brain.nrrd", "Labels"), "brain.Labels");
    EXPECT_EQ(HxBase::composeLabel("brain.nii.gz", "intpol"), "brain.nii.intpol");
    EXPECT_EQ(HxBase::composeLabel("brain", "Labels"), "brain.Labels");
    EXPECT_EQ(HxBase::composeLabel(".rc", "Labels"), ".rc.Labels");
    EXPECT_EQ(HxBase::composeLabel("", "Labels"), ".Labels");
}

TEST_F(HxPool, ConnectionsRefuseForeignTypesAndClearThemselves)
{
    auto* module = added(new TestModule(McTypeId::of<HxUniformLabelField3>()), "m");
    HxObject* image = newImage("image");
    HxUniformLabelField3* labels = newLabels("labels");

    EXPECT_FALSE(module->portData.connect(image));
    EXPECT_FALSE(module->portData.connect(module));
    EXPECT_TRUE(module->portData.connect(labels));
    EXPECT_EQ(module->portData.source<HxUniformLabelField3>(), labels);
    EXPECT_FALSE(module->portData.connect(image)) << "a refused object leaves the old one";
    EXPECT_EQ(module->portData.source(), labels);

    module->portData.addType(McTypeId::of<HxLattice3>());
    EXPECT_TRUE(module->portData.connect(image)) << "an interface is a type, too";
    EXPECT_EQ(labels->numDownstream(), 0);
    pool().removeObject(image);
    EXPECT_EQ(module->portData.source(), nullptr);
    EXPECT_TRUE(module->portData.isNew());

    {
        HxUniformLabelField3 shortLived(kDims);
        EXPECT_TRUE(module->portData.connect(&shortLived));
    }
    EXPECT_EQ(module->portData.source(), nullptr);
}

TEST_F(HxPool, ImageDataIsResolvedByNameAndForgottenOnlyOnRequest)
{
    HxUniformLabelField3* labels = newLabels("labels");
    const auto parameter = [&] {
        McString text("none");
        labels->parameters.findString("ImageData", text);
        return text;
    };
    EXPECT_TRUE(labels->imageConnection().connect(newImage("brain")));
    EXPECT_EQ(parameter(), "brain");
    pool().find("brain")->setLabel("head");
    EXPECT_EQ(parameter(), "head") << "the parameter follows the image's label";

    pool().removeObject(pool().find("head"));
    EXPECT_EQ(labels->imageConnection().source(), nullptr);
    EXPECT_EQ(parameter(), "head") << "kept for the image's return";
    newImage("other");
    EXPECT_EQ(labels->imageConnection().source(), nullptr);
    HxObject* back = newImage("head");
    EXPECT_EQ(labels->imageConnection().source(), back);

    HxObject* connectedWhenTold = nullptr;
    QObject context;
    QObject::connect(&pool(), &HxObjectPool::objectAdded, &context, [&](HxObject* o) {
        if (auto* field = dynamic_cast<HxLabelField3*>(o))
            connectedWhenTold = field->imageConnection().source();
    });
    auto* loaded = new HxUniformLabelField3(kDims);
    loaded->parameters.set("ImageData", "other");
    added(loaded, "loaded");
    EXPECT_EQ(connectedWhenTold, pool().find("other")) << "listeners find the image connected";

    labels->imageConnection().disconnect();
    EXPECT_EQ(parameter(), "none");
}

TEST_F(HxPool, ModulesSeeNewPortsOnceAndCloseWhatTheyLeaveOpen)
{
    auto* module = added(new TestModule, "m");
    HxObject* image = newImage("image");
    module->portData.connect(image);
    module->action.hit();
    image->notifyUpdate(1);
    image->notifyUpdate(0);
    image->touch(4);
    EXPECT_TRUE(module->portData.isSourceTouched());
    image->fire();
    EXPECT_EQ(module->log, "UCuc") << "edited data are no new input";
    EXPECT_FALSE(module->portData.isSourceTouched());

    module->fails = true;
    module->action.hit();
    EXPECT_THROW(module->fire(), McException);
    EXPECT_EQ(HxWorkArea::getTheWorkArea()->busyDepth(), 0);
    EXPECT_FALSE(module->action.isNew());
    McString result;
    EXPECT_EQ(HxInterpreter::getTheInterpreter()->eval("m fire", result), TCL_ERROR);
    EXPECT_EQ(result, "m: It broke.");
}

TEST_F(HxPool, AModuleMayTakeItselfOrItsInputOutOfThePoolWhileItComputes)
{
    HxObject* image = newImage("image");
    bool gone = false;
    bool wasThere = false;
    auto* module = added(new LeavingModule(gone, wasThere), "leaving");
    module->portData.connect(image);
    image->fire();
    EXPECT_TRUE(wasThere) << "it lives until its fire has ended";
    EXPECT_TRUE(gone);
    EXPECT_EQ(pool().size(), 0);
}

TEST_F(HxPool, ResultsFireWhatDependsOnThemAndLoopsEnd)
{
    auto* first = added(new TestModule, "first");
    auto* second = added(new TestModule, "second");
    auto* result = new HxUniformScalarField3(kDims, kMcShort);
    auto* backAgain = new HxUniformScalarField3(kDims, kMcShort);
    first->setResult(0, result, -1);
    second->setResult(0, backAgain, -1);
    second->portData.connect(result);
    first->portData.connect(backAgain);
    first->fire();
    EXPECT_EQ(first->log, "Uc");
    EXPECT_EQ(second->log, "Uc");
}

TEST_F(HxPool, ResultsBelongToTheirModuleUntilTheyAreFreed)
{
    auto* module = added(new TestModule, "m");
    auto* result = new HxUniformScalarField3(kDims, kMcShort);
    module->setResult(1, result, -1);
    EXPECT_TRUE(pool().contains(result));
    EXPECT_EQ(module->getResult(1), result);
    EXPECT_EQ(module->getResult(0), nullptr);
    EXPECT_EQ(result->masterConnection().module(), module);
    module->setResult(1, result, -1);
    EXPECT_EQ(module->getResult(1), result) << "the same result again changes nothing";

    auto* next = new HxUniformScalarField3(kDims, kMcShort);
    const McHandle<HxData> former(result);
    module->setResult(1, next, -1);
    EXPECT_FALSE(pool().contains(result)) << "the former result leaves the pool";
    EXPECT_EQ(result->masterConnection().module(), nullptr);

    next->masterConnection().disconnect();
    EXPECT_EQ(module->getResult(1), nullptr);
    module->setResult(1, new HxUniformScalarField3(kDims, kMcShort), -1);
    EXPECT_TRUE(pool().contains(next)) << "a freed result stays";

    HxData* last = module->getResult(1);
    pool().removeObject(last);
    EXPECT_EQ(module->getResult(1), nullptr);

    module->setResult(0, added(new HxLineSet, "lines"), -1);
    pool().removeObject(module);
    EXPECT_NE(pool().find("lines"), nullptr);
    EXPECT_EQ(static_cast<HxData*>(pool().find("lines"))->masterConnection().module(), nullptr);
}
