#include "ui/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

// The translations stand in a static library: without this the linker leaves them out.
static void keepTranslations() {
    Q_INIT_RESOURCE(translations);
}

namespace velmora {

void installTranslations(QObject& owner, const QStringList& languages) {
    keepTranslations();
    for (const QString& language : languages) {
        const QLocale locale(language);
        if (locale.language() == QLocale::English) {
            return;
        }
        auto own = std::make_unique<QTranslator>();
        if (!own->load(QStringLiteral(":/translations/velmora_") + locale.name())) {
            continue;
        }
        own->setParent(&owner);
        QCoreApplication::installTranslator(own.release());

        auto toolkit = std::make_unique<QTranslator>();
        if (toolkit->load(QStringLiteral("qtbase_") + locale.name(),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            toolkit->setParent(&owner);
            QCoreApplication::installTranslator(toolkit.release());
        }
        return;
    }
}

}  // namespace velmora
