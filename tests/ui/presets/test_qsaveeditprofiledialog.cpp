#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "app/ui/presets/qsaveeditprofiledialog.h"
#include "core/widgets/windowicon.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"

namespace {

const QStringList existing { QStringLiteral("Quiet"), QStringLiteral("Loud night") };

// The dialog on the screen, with the keyboard.
class ShownDialog {
public:
    explicit ShownDialog(const QString& currentName, const QStringList& names = existing)
        : dialog(nullptr, names, currentName)
    {
        dialog.show();
        dialog.activateWindow();
        if (!QTest::qWaitForWindowActive(&dialog)) {
            qFatal("The dialog gets no keyboard");
        }
    }

    [[nodiscard]] QComboBox* combo() const { return child<QComboBox>("comboName"); }
    [[nodiscard]] QLineEdit* edit() const { return child<QLineEdit>("editName"); }
    [[nodiscard]] QPushButton* buttonOK() const { return buttons().value(0); }
    [[nodiscard]] QPushButton* buttonCancel() const { return buttons().value(1); }
    [[nodiscard]] QList<QPushButton*> buttons() const
    {
        QList<QPushButton*> result;
        auto* const box = child<QDialogButtonBox>("buttonBox");
        for (const auto role : { QDialogButtonBox::AcceptRole, QDialogButtonBox::RejectRole }) {
            for (auto* const button : box->buttons()) {
                if (box->buttonRole(button) == role) {
                    result.append(qobject_cast<QPushButton*>(button));
                }
            }
        }
        return result;
    }

    template <typename Widget> [[nodiscard]] Widget* child(const char* name) const
    {
        return dialog.findChild<Widget*>(QLatin1String(name));
    }

    QSaveEditProfileDialog dialog;
};

void type(const QString& text)
{
    auto* const widget = QApplication::focusWidget();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    QTest::keyClicks(widget, text);
}

void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

} // namespace

class SaveEditProfileDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_texts = std::make_unique<InterfaceTexts>(); }
    void cleanup() { m_texts.reset(); }

    void savingOffersTheExistingNames();
    void renamingStartsFromTheCurrentName();
    void aDialogOfTheProgramHasItsManners();
    void theSizeIsFixedAndHoldsEveryText_data();
    void theSizeIsFixedAndHoldsEveryText();
    void aLongNameLeavesTheSizeAlone();
    void namesThatCanBeSaved_data();
    void namesThatCanBeSaved();
    void namesThatCanBeGiven_data();
    void namesThatCanBeGiven();
    void thePresentNameIsRefusedWhereverItComesFrom();
    void theNameComesBackTrimmed_data();
    void theNameComesBackTrimmed();
    void anExistingNameCanBeChosen();
    void nothingIsCompletedForTheUser();
    void theCaseOfATypedNameStays();
    void cancellingLeavesNoName_data();
    void cancellingLeavesNoName();
    void enterDoesNothingWhileTheNameIsRefused();
    void tabWalksInReadingOrder_data();
    void tabWalksInReadingOrder();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void SaveEditProfileDialogTest::savingOffersTheExistingNames()
{
    const ShownDialog shown { QString() };

    QCOMPARE(shown.dialog.windowTitle(), QStringLiteral("Save custom preset"));
    QCOMPARE(shown.child<QLabel>("labelTitle")->text(), shown.dialog.windowTitle());
    QCOMPARE(shown.child<QLabel>("labelProfileName")->text(), QStringLiteral("Preset name:"));
    QVERIFY(shown.child<QLabel>("labelProfileName")->buddy() == shown.combo());
    QVERIFY(shown.combo()->isVisible());
    QVERIFY(shown.combo()->isEditable());
    QVERIFY(!shown.edit()->isVisible());
    QCOMPARE(shown.combo()->currentText(), QString());
    QCOMPARE(shown.combo()->count(), 2);
    QCOMPARE(shown.combo()->itemText(0), existing[0]);
    QCOMPARE(shown.combo()->itemText(1), existing[1]);
    QVERIFY(shown.combo()->hasFocus());
    QVERIFY(!shown.buttonOK()->isEnabled());
}

void SaveEditProfileDialogTest::renamingStartsFromTheCurrentName()
{
    const ShownDialog shown(existing[0]);

    QCOMPARE(shown.dialog.windowTitle(), QStringLiteral("Edit preset name"));
    QCOMPARE(shown.child<QLabel>("labelTitle")->text(), shown.dialog.windowTitle());
    QCOMPARE(shown.child<QLabel>("labelProfileName")->text(), QStringLiteral("Preset name:"));
    QVERIFY(shown.child<QLabel>("labelProfileName")->buddy() == shown.edit());
    QVERIFY(!shown.combo()->isVisible());
    QVERIFY(shown.edit()->isVisible());
    QVERIFY(shown.edit()->width() >= shown.combo()->sizeHint().width());
    QCOMPARE(shown.edit()->text(), existing[0]);
    QCOMPARE(shown.edit()->selectedText(), existing[0]);
    QVERIFY(shown.edit()->hasFocus());
    QVERIFY(!shown.buttonOK()->isEnabled());
}

void SaveEditProfileDialogTest::aDialogOfTheProgramHasItsManners()
{
    const ShownDialog shown { QString() };

    QCOMPARE(shown.dialog.windowIcon().cacheKey(), windowIcon().cacheKey());
    QVERIFY(!shown.dialog.testAttribute(Qt::WA_QuitOnClose));
    QVERIFY(!shown.dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(shown.buttons().size(), 2);
    QCOMPARE(shown.buttonOK()->text(), QStringLiteral("OK"));
    QVERIFY(shown.buttonOK()->autoDefault());
    QCOMPARE(shown.buttonCancel()->text(), QStringLiteral("Cancel"));
}

void SaveEditProfileDialogTest::theSizeIsFixedAndHoldsEveryText_data()
{
    QTest::addColumn<QString>("currentName");
    QTest::newRow("saving") << QString();
    QTest::newRow("renaming") << existing[0];
}

void SaveEditProfileDialogTest::theSizeIsFixedAndHoldsEveryText()
{
    QFETCH(QString, currentName);
    const QByteArray text("Donaudampfschifffahrtsgesellschaftskapitänsmützenhalterung "
                          "mit einem langen Zusatz:");
    m_texts->translate("<Presets><labelPresetName>" + text + "</labelPresetName><savePresetTitle>"
                       + text + "</savePresetTitle><editPresetTitle>" + text
                       + "</editPresetTitle></Presets>");
    const ShownDialog shown(currentName);

    QCOMPARE(shown.dialog.minimumSize(), shown.dialog.size());
    QCOMPARE(shown.dialog.maximumSize(), shown.dialog.size());
    for (const char* name : { "labelTitle", "labelProfileName" }) {
        const auto* const label = shown.child<QLabel>(name);
        QCOMPARE(label->text(), QString::fromUtf8(text));
        QVERIFY(label->width() >= label->sizeHint().width());
        QVERIFY(label->height() >= label->sizeHint().height());
    }
}

void SaveEditProfileDialogTest::aLongNameLeavesTheSizeAlone()
{
    const QString longName(300, QLatin1Char('W'));
    const ShownDialog plainSave { QString() };
    const ShownDialog plainRename(existing[0]);

    const ShownDialog longSave(QString(), { longName });
    const ShownDialog longRename(longName, { longName });

    QCOMPARE(longSave.dialog.size(), plainSave.dialog.size());
    QCOMPARE(longRename.dialog.size(), plainRename.dialog.size());
    QCOMPARE(longRename.edit()->text(), longName);
}

void SaveEditProfileDialogTest::namesThatCanBeSaved_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("none") << QString() << false;
    QTest::newRow("a new one") << QStringLiteral("Cool") << true;
    QTest::newRow("an existing one") << QStringLiteral("Quiet") << true;
    QTest::newRow("an existing one in other case") << QStringLiteral("QUIET") << true;
    QTest::newRow("blanks") << QStringLiteral("  ") << true;
}

void SaveEditProfileDialogTest::namesThatCanBeSaved()
{
    QFETCH(QString, text);
    const ShownDialog shown { QString() };
    type(QStringLiteral("before"));
    QVERIFY(shown.buttonOK()->isEnabled());

    type(text);

    QTEST(shown.buttonOK()->isEnabled(), "allowed");
}

void SaveEditProfileDialogTest::namesThatCanBeGiven_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("none") << QString() << false;
    QTest::newRow("a new one") << QStringLiteral("Cool") << true;
    QTest::newRow("the same") << QStringLiteral("Quiet") << false;
    QTest::newRow("the same in other case") << QStringLiteral("quIet") << false;
    QTest::newRow("another preset's") << QStringLiteral("Loud night") << false;
    QTest::newRow("another preset's in other case") << QStringLiteral("LOUD NIGHT") << false;
    QTest::newRow("a part of another preset's") << QStringLiteral("Loud") << true;
    QTest::newRow("blanks") << QStringLiteral("  ") << true;
    QTest::newRow("the same with a blank") << QStringLiteral("Quiet ") << true;
}

void SaveEditProfileDialogTest::namesThatCanBeGiven()
{
    QFETCH(QString, text);
    const ShownDialog shown(existing[0]);
    type(QStringLiteral("before"));
    QVERIFY(shown.buttonOK()->isEnabled());

    type(text);

    QTEST(shown.buttonOK()->isEnabled(), "allowed");
}

void SaveEditProfileDialogTest::thePresentNameIsRefusedWhereverItComesFrom()
{
    const ShownDialog shown(QStringLiteral("Other"));
    type(QStringLiteral("other"));
    QVERIFY(shown.buttonOK()->isEnabled());
    type(QStringLiteral("Other"));
    QVERIFY(!shown.buttonOK()->isEnabled());
}

void SaveEditProfileDialogTest::theNameComesBackTrimmed_data()
{
    QTest::addColumn<QString>("currentName");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("result");
    const QString text = QStringLiteral("  My %1 & yours ");
    const QString result = QStringLiteral("My %1 & yours");
    QTest::newRow("saving") << QString() << text << result;
    QTest::newRow("saving blanks") << QString() << QStringLiteral("   ") << QString();
    QTest::newRow("renaming") << existing[0] << text << result;
    QTest::newRow("renaming to blanks") << existing[0] << QStringLiteral("   ") << QString();
}

void SaveEditProfileDialogTest::theNameComesBackTrimmed()
{
    QFETCH(QString, currentName);
    QFETCH(QString, text);
    ShownDialog shown(currentName);
    type(text);

    QTest::mouseClick(shown.buttonOK(), Qt::LeftButton);

    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!shown.dialog.isVisible());
    QTEST(shown.dialog.resultName(), "result");
}

void SaveEditProfileDialogTest::anExistingNameCanBeChosen()
{
    ShownDialog shown { QString() };

    press(Qt::Key_Down);
    QCOMPARE(shown.combo()->currentText(), existing[0]);
    press(Qt::Key_Down);
    press(Qt::Key_Return);

    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(shown.dialog.resultName(), existing[1]);
}

// A completed name would overwrite another preset.
void SaveEditProfileDialogTest::nothingIsCompletedForTheUser()
{
    ShownDialog shown { QString() };

    type(QStringLiteral("Loud"));
    QCOMPARE(shown.combo()->currentText(), QStringLiteral("Loud"));
    press(Qt::Key_Return);

    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(shown.dialog.resultName(), QStringLiteral("Loud"));
}

void SaveEditProfileDialogTest::theCaseOfATypedNameStays()
{
    ShownDialog shown { QString() };

    type(QStringLiteral("quiet"));
    press(Qt::Key_Return);

    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(shown.dialog.resultName(), QStringLiteral("quiet"));
}

void SaveEditProfileDialogTest::cancellingLeavesNoName_data()
{
    QTest::addColumn<QString>("currentName");
    QTest::addColumn<QString>("way");
    for (const char* way : { "button", "Escape", "Ctrl+W" }) {
        QTest::addRow("saving, %s", way) << QString() << QString::fromLatin1(way);
        QTest::addRow("renaming, %s", way) << existing[0] << QString::fromLatin1(way);
    }
}

void SaveEditProfileDialogTest::cancellingLeavesNoName()
{
    QFETCH(QString, currentName);
    QFETCH(QString, way);
    ShownDialog shown(currentName);
    type(QStringLiteral("Cool"));

    if (way == QLatin1String("button")) {
        QTest::mouseClick(shown.buttonCancel(), Qt::LeftButton);
    } else if (way == QLatin1String("Escape")) {
        press(Qt::Key_Escape);
    } else {
        QTest::keyClick(&shown.dialog, Qt::Key_W, Qt::ControlModifier);
    }

    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.result(), int(QDialog::Rejected));
    QCOMPARE(shown.dialog.resultName(), QString());
}

void SaveEditProfileDialogTest::enterDoesNothingWhileTheNameIsRefused()
{
    ShownDialog shown(existing[0]);

    press(Qt::Key_Return);
    QVERIFY(shown.dialog.isVisible());

    type(QStringLiteral("Cool"));
    press(Qt::Key_Return);
    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.resultName(), QStringLiteral("Cool"));
}

void SaveEditProfileDialogTest::tabWalksInReadingOrder_data()
{
    QTest::addColumn<QString>("currentName");
    QTest::newRow("saving") << QString();
    QTest::newRow("renaming") << existing[0];
}

void SaveEditProfileDialogTest::tabWalksInReadingOrder()
{
    QFETCH(QString, currentName);
    const ShownDialog shown(currentName);
    auto* const field = QApplication::focusWidget();
    type(QStringLiteral("Cool"));

    press(Qt::Key_Tab);
    const bool okFirst = shown.buttonOK()->x() < shown.buttonCancel()->x();
    QVERIFY((okFirst ? shown.buttonOK() : shown.buttonCancel())->hasFocus());
    press(Qt::Key_Tab);
    QVERIFY((okFirst ? shown.buttonCancel() : shown.buttonOK())->hasFocus());
    press(Qt::Key_Tab);
    QVERIFY(field->hasFocus());
}

BRISORA_TEST_MAIN(SaveEditProfileDialogTest, QApplication)

#include "test_qsaveeditprofiledialog.moc"
