#pragma once

#include <QComboBox>

class LanguageStrings;

// The selector of the interface's language: an item per language that is there,
// with the base name as its data.
class QLanguageComboBox : public QComboBox {
    Q_OBJECT

public:
    explicit QLanguageComboBox(QWidget* parent = nullptr);

    // Fills the box, with the language in use selected.
    void load(const LanguageStrings& language);
    [[nodiscard]] QString selectedLanguage() const { return currentData().toString(); }
};
