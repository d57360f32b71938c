#include "ObrixBase/state/rtb_init.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string calls; // what the registered test hooks saw

template <class T>
T* fake(int n) {
    return reinterpret_cast<T*>(static_cast<std::uintptr_t>(n * 16));
}

void cursorA(VK_Window*) {
    calls += "a";
}
void cursorB(VK_Window*) {
    calls += "b";
}
void cursorC(VK_Window*) {
    calls += "c";
}
void cursorPrimary(VK_Window* w) {
    calls += w == fake<VK_Window>(1) ? "P" : "?";
}

std::string dispatch() {
    calls.clear();
    get_cursor_procedure()(fake<VK_Window>(1));
    return calls;
}

} // namespace

// One stub per kind of answer: every stub is made by the same table row.
TEST(LateBoundHooks, UnsetHooksDoNothingAndAnswerZeroFalseOrNull) {
    rtbInit_createItermats(nullptr);
    rtbInit_InsertHanger(nullptr);
    rtbInit_GetNewPolysetDefaultVertDisplay(nullptr);
    rtbInit_Ar_expand_pixname(nullptr);
    rtbInit_PolysetVertexCopy(nullptr);
    EXPECT_EQ(create_itermats(fake<Dag_node>(1)), 0);
    EXPECT_EQ(insert_hanger(nullptr, 1, 2, nullptr), nullptr);
    EXPECT_FALSE(get_NewPolyset_defaultVertDisplay());
    EXPECT_EQ(Ar_expand_pixname("pix", 3), nullptr);
    Ps_interactiveVertexCopyHack(*fake<PS_Vertex>(1), *fake<PS_Vertex>(2));
    EXPECT_EQ(RI_getShaderList(nullptr), nullptr); // never registered in this process
}

TEST(LateBoundHooks, StubsForwardEveryArgumentInOrderAndTheLatestRegistrationWins) {
    rtbInit_InsertHanger([](Hanger*, int, int, void*) -> Hanger* { return nullptr; });
    rtbInit_InsertHanger([](Hanger* list, int a, int b, void* data) {
        calls = std::to_string(a) + "," + std::to_string(b);
        return data == list ? list : nullptr;
    });
    EXPECT_EQ(insert_hanger(fake<Hanger>(2), 3, 4, fake<Hanger>(2)), fake<Hanger>(2));
    EXPECT_EQ(calls, "3,4");

    rtbInit_PolysetVertexCopy([](PS_Vertex& from, PS_Vertex& to) {
        calls = &from == fake<PS_Vertex>(1) && &to == fake<PS_Vertex>(2) ? "ordered" : "swapped";
    });
    Ps_interactiveVertexCopyHack(*fake<PS_Vertex>(1), *fake<PS_Vertex>(2));
    EXPECT_EQ(calls, "ordered");

    rtbInit_InsertHanger(nullptr);
    rtbInit_PolysetVertexCopy(nullptr);
}

TEST(CursorProcedures, TheDispatcherCallsThePrimaryThenTheListWithoutAdjacentRepeats) {
    EXPECT_EQ(dispatch(), ""); // nothing set: nothing called

    set_cursor_procedure(&cursorPrimary);
    add_cursor_procedure(&cursorA);
    add_cursor_procedure(&cursorA); // already last: no change
    add_cursor_procedure(nullptr);
    add_cursor_procedure(&cursorB);
    add_cursor_procedure(&cursorA); // earlier but not last: added again
    EXPECT_EQ(dispatch(), "Paba");

    // Removing the middle one leaves two adjacent a's until the next addition collapses them.
    remove_cursor_procedure(&cursorB);
    EXPECT_EQ(dispatch(), "Paa");
    add_cursor_procedure(&cursorC);
    EXPECT_EQ(dispatch(), "Pac");

    set_cursor_procedure(nullptr);
    remove_cursor_procedure(&cursorA);
    EXPECT_EQ(dispatch(), "c");
    remove_cursor_procedure(&cursorC);
    EXPECT_EQ(dispatch(), "");
}
