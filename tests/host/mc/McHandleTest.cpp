#include "mc/McHandle.h"
#include "mc/McHandable.h"
#include "mc/McTypeId.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Writes down what happens to it.
class Witness : public McHandable
{
public:
    explicit Witness(std::string& log) : diary(log) {}
    ~Witness() override { diary += "deleted "; }
    void notifyDelete() override
    {
        diary += "notified ";
        // A listener that looks at the dying object through a handle.
        McHandle<Witness> look(this);
    }

private:
    std::string& diary;
};

struct Root
{
    virtual ~Root() = default;
};
struct Middle : Root
{
};
struct Leaf : Middle
{
};

} // namespace

TEST(McHandle, DeletesWithTheLastReferenceAfterOneNotice)
{
    std::string log;
    {
        McHandle<Witness> a(new Witness(log));
        McHandle<McHandable> b = a;
        McHandle<Witness> c(std::move(a));
        EXPECT_EQ(c->refCount(), 2);
        c = nullptr;
        b = b;
        EXPECT_EQ(log, "");
        b = nullptr;
        EXPECT_EQ(log, "notified deleted ");
    }
    EXPECT_EQ(log, "notified deleted ");
}

TEST(McHandle, StackObjectsAndCopiesCountApart)
{
    std::string log;
    {
        Witness first(log);
        first.ref();
        Witness second(first);
        EXPECT_EQ(second.refCount(), 0);
        static_cast<McHandable&>(second) = first;
        EXPECT_EQ(second.refCount(), 0);
        EXPECT_EQ(first.refCount(), 1);
    }
    EXPECT_EQ(log, "deleted deleted ") << "nobody counted them down to 0";
}

TEST(McTypeId, KnowsTheChainOfBasesHoweverLateItIsDeclared)
{
    const McTypeId leaf = McTypeId::declare<Leaf, Middle>("Leaf");
    EXPECT_TRUE(leaf.isDerivedFrom(McTypeId::of<Middle>()));
    EXPECT_FALSE(leaf.isDerivedFrom(McTypeId::of<Root>()));
    McTypeId::declare<Middle, Root>("Middle");
    McTypeId::declare<Root>("Root");
    EXPECT_TRUE(leaf.isDerivedFrom(McTypeId::of<Root>()));
    EXPECT_FALSE(McTypeId::of<Root>().isDerivedFrom(leaf));
    EXPECT_EQ(McTypeId::fromName("Leaf"), leaf);
    EXPECT_STREQ(leaf.base().name(), "Middle");
    EXPECT_FALSE(McTypeId::fromName("NoSuchClass").isValid());
    EXPECT_FALSE(leaf.isDerivedFrom(McTypeId()));
    EXPECT_FALSE(McTypeId().isDerivedFrom(McTypeId()));
}
