#pragma once
#include <Qt>

// What a list grid asks of its model beyond display text: the field a column shows (head
// data), its width in pixels (head data; not the size hint, which would also set the heads'
// height) and the row's bookmark in its snapshot (cell data of any column). Alignment comes
// as the cells' Qt::TextAlignmentRole.
namespace GridRole {
enum : int {
    DataField = Qt::UserRole + 0x100,
    Bookmark,
    Width,
};
}
