#pragma once
#include <Qt>

// What a list grid asks of its model beyond display text: the field a column shows (head
// data) and the row's bookmark in its snapshot (cell data of any column). Column widths come
// as the heads' Qt::SizeHintRole, alignment as the cells' Qt::TextAlignmentRole.
namespace GridRole {
enum : int {
    DataField = Qt::UserRole + 0x100,
    Bookmark,
};
}
