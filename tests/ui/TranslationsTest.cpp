#include "base/Localized.h"
#include "sync/ImportResult.h"
#include "ui/StatusLook.h"
#include "ui/Translations.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace velmora {
namespace {

QString settingsTitleIn(const QStringList& languages) {
    QObject owner;
    installTranslations(owner, languages);
    return QCoreApplication::translate("velmora::SettingsView", "Settings");
}

TEST(TranslationsTest, AreThoseOfTheFirstLanguageThatTheProgramSpeaks) {
    EXPECT_EQ(settingsTitleIn({QStringLiteral("de")}), QStringLiteral("Einstellungen"));
    EXPECT_EQ(settingsTitleIn({QStringLiteral("de-AT"), QStringLiteral("en")}), QStringLiteral("Einstellungen"));
    EXPECT_EQ(settingsTitleIn({QStringLiteral("tlh"), QStringLiteral("de"), QStringLiteral("en")}),
              QStringLiteral("Einstellungen"));
}

TEST(TranslationsTest, LeaveEnglishAlone) {
    EXPECT_EQ(settingsTitleIn({}), QStringLiteral("Settings"));
    EXPECT_EQ(settingsTitleIn({QStringLiteral("C")}), QStringLiteral("Settings"));
    EXPECT_EQ(settingsTitleIn({QStringLiteral("en-GB"), QStringLiteral("de")}), QStringLiteral("Settings"));
    EXPECT_EQ(settingsTitleIn({QStringLiteral("tlh")}), QStringLiteral("Settings"));
}

TEST(TranslationsTest, GoWithTheirOwner) {
    settingsTitleIn({QStringLiteral("de")});
    EXPECT_EQ(QCoreApplication::translate("velmora::SettingsView", "Settings"), QStringLiteral("Settings"));
}

TEST(TranslationsTest, ReachWhatLibrariesWithoutWindowsSay) {
    QObject owner;
    installTranslations(owner, {QStringLiteral("de")});
    EXPECT_EQ(filled(localized("velmora::TunnelEngine", "Reconnecting in %1s… (%2)"), {"5", "refused"}),
              "Neuer Versuch in 5 s… (refused)");
    EXPECT_EQ(statusText(ConnectionStatus::disconnected()), QStringLiteral("Nicht verbunden"));
}

TEST(TranslationsTest, HaveAFormForEachNumber) {
    QObject owner;
    installTranslations(owner, {QStringLiteral("de")});
    EXPECT_EQ(importAlertMessage({.imported = 1, .skipped = 1}), "1 Tunnel importiert. 1 Duplikat übersprungen.");
    EXPECT_EQ(importAlertMessage({.imported = 0, .skipped = 3}), "0 Tunnel importiert. 3 Duplikate übersprungen.");
}

}  // namespace
}  // namespace velmora
