#include "core/widgets/qlanguagecombobox.h"

#include <QSignalBlocker>

#include "core/language/languagestrings.h"

QLanguageComboBox::QLanguageComboBox(QWidget* parent)
    : QComboBox(parent)
{
}

void QLanguageComboBox::load(const LanguageStrings& language)
{
    const QSignalBlocker quiet(this);
    clear();
    const QStringList names = language.getAvailableLanguages();
    for (const QString& name : names) {
        const QString native = LanguageStrings::nativeName(name);
        addItem(native.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, native), name);
    }
    setCurrentIndex(findData(language.getLanguageName()));
}
