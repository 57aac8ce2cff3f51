// A key pressed in a bib field goes through a keystroke filter as its code-page code: the
// filter takes the code and gives back the key to type (0: none; Enter has been acted on).
#pragma once

#include <functional>

class QKeyEvent;
class QLineEdit;

// Returns whether the key press is taken here; otherwise the field types it itself. Arrows,
// Delete and the like are not the filter's business; a character outside the code page is
// swallowed; a key the filter changed (upper case, say) is typed as changed.
bool filterKey(QLineEdit* field, const QKeyEvent* key, const std::function<int(int)>& filter);
