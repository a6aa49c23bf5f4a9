#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <ostream>
#include <vector>

namespace orvex::test {

/// What a store holds of the states that were saved into it.
struct FoundStates {
    int newest = 0; ///< 0 if nothing was saved yet
    int count = 0;
};

/// One kind of file that the program saves, with contents that are told by a number from 1 on: a later one may be
/// longer or shorter.
struct SavedKind {
    const char* name;
    bool keepsAll; ///< whether each save adds something, and nothing is replaced by something else

    /// Opens the store in a folder, which it may make, and gives what saves the state of a number there. Raises what
    /// the store raises.
    std::function<std::function<void(int)>(const QString& folder)> open;

    /// Loads what is in the folder. Raises what the store raises, and std::runtime_error for anything that is not
    /// exactly what was saved.
    std::function<FoundStates(const QString& folder)> find;

    /// The file that saving a state makes or replaces.
    std::function<QString(const QString& folder, int number)> file;
};

/// All kinds.
[[nodiscard]] const std::vector<SavedKind>& savedKinds();

inline std::ostream& operator<<(std::ostream& stream, const SavedKind& kind) {
    return stream << kind.name;
}

/// Saves one state.
inline void save(const SavedKind& kind, const QString& folder, int number) {
    kind.open(folder)(number);
}

} // namespace orvex::test
