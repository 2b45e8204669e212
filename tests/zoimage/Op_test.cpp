// The life of an operator: what validation, invalidation and rewiring call and change.
#include "ZoImage/Op.h"

#include <gtest/gtest.h>

#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

class Counting : public Iop {
  public:
    explicit Counting(Op* source = nullptr) : Iop(NodeContext{}) {
        inputs(2);
        set_input(0, source);
    }
    const char* class_name() const override { return "Counting"; }
    int validations = 0;
    int closes_while_shared = 0;

  protected:
    void _validate(bool for_real) override {
        ++validations;
        Iop::_validate(for_real);
    }
    void _close() override { closes_while_shared += users() >= 2 ? 1 : 0; }
    void engine(int y, int, int, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels);
    }
};

TEST(Op, ValidatesOnceUntilSomethingChanges) {
    test::FunctionSource source({0, 0, 4, 4}, kMaskRgba, [](Channel, int, int) { return 0.0f; });
    Counting a(&source);
    Counting b(&a);
    const auto expect_validations = [&](int of_a, int of_b) {
        b.validate(true);
        EXPECT_EQ(a.validations, of_a);
        EXPECT_EQ(b.validations, of_b);
    };
    b.validate(false);  // does not count for real
    expect_validations(1, 2);
    expect_validations(1, 2);
    Hash before = b.hash();
    source.set_pixel([](Channel, int, int) { return 1.0f; });
    EXPECT_NE(b.hash(), before);
    expect_validations(2, 3);
    // A hash given invalidates when it is a new one.
    for (int round = 1; round <= 2; ++round) {
        Hash given;
        given.append(round);
        a.invalidate(given);
        expect_validations(2 + round, 3 + round);
        a.invalidate(given);
        expect_validations(2 + round, 3 + round);
    }
    Counting alone;
    alone.invalidate(before);
    EXPECT_EQ(alone.hash(), before);
    alone.invalidate();
    EXPECT_NE(alone.hash(), before);
}

TEST(Op, RewiringIsAChangeAndDestructionUnlinks) {
    Counting reader;
    Hash setup, wired;
    {
        Counting a;
        Counting b;
        reader.set_input(0, &a);
        reader.validate(true);
        reader.set_input(0, &a);
        EXPECT_TRUE(reader.valid());
        reader.set_input(0, &b);
        EXPECT_FALSE(reader.valid());
        reader.set_input(1, &a);
        reader.invalidate(setup);
        wired = reader.hash();
    }
    EXPECT_FALSE(reader.connected(0));
    EXPECT_FALSE(reader.connected(1));
    EXPECT_EQ(&reader.input(0), &Iop::black());
    EXPECT_NE(reader.hash(), wired);
}

TEST(Op, KnowsItsInternalOperatorsAndItsUsers) {
    Counting node;
    {
        Counting inner;
        inner.parent(&node, "inner");
        EXPECT_EQ(node.child("inner"), &inner);
        EXPECT_EQ(inner.parent(), &node);
    }
    EXPECT_EQ(node.child("inner"), nullptr);
    node.open();
    node.open();
    for (int users = 2; users > 0; --users) {
        EXPECT_EQ(node.users(), users);
        node.close();
        EXPECT_EQ(node.closes_while_shared, 1);
    }
}

}  // namespace
