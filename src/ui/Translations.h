#pragma once

#include <QStringList>

class QObject;

namespace velmora {

/// Has the texts of the program, and of the toolkit's own dialogs, stand in the first of these languages that the
/// program speaks. English, which is the language of the sources, needs nothing. Before the first text is asked for;
/// they go when `owner` does. Main thread.
void installTranslations(QObject& owner, const QStringList& languages);

}  // namespace velmora
