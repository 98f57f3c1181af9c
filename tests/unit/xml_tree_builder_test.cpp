#include "sdk/core/xml/TreeBuilder.h"

#include <gtest/gtest.h>

namespace {

using Mirqos::Xml::TreeBuilder;

// What parsers see to by themselves, and the tree does not rely on.

TEST(XmlTreeBuilder, ASecondRootIsRefused) {
    TreeBuilder tree;
    EXPECT_TRUE(tree.Start("R") && tree.End());
    EXPECT_FALSE(tree.Start("S"));
    EXPECT_EQ(tree.Error(), "more than one root element");
}

TEST(XmlTreeBuilder, AnEndWithoutAStartIsRefused) {
    TreeBuilder tree;
    EXPECT_FALSE(tree.End());
    EXPECT_EQ(tree.Error(), "an end without a start");
}

TEST(XmlTreeBuilder, TextOutsideTheRootBelongsToNothing) {
    TreeBuilder tree;
    EXPECT_TRUE(tree.Text("before"));
    EXPECT_TRUE(tree.Start("R") && tree.Text("inside") && tree.End());
    EXPECT_TRUE(tree.Text("behind"));
    const auto document = tree.Take();
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Root().Text(), "inside");
}

TEST(XmlTreeBuilder, ATreeWithoutItsEndIsNotGivenOut) {
    TreeBuilder tree;
    EXPECT_TRUE(tree.Start("R"));
    EXPECT_FALSE(tree.Take());
}

}  // namespace
