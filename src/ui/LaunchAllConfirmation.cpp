#include "LaunchAllConfirmation.h"

#include "Preferences.h"
#include "SettingsKeys.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace Quillon {

void confirmLaunchAll(QWidget *parent, Preferences &preferences, int count, const std::function<void()> &launch)
{
    const bool ask = preferences.boolValue(Keys::ConfirmLaunchAll);
    if (count <= 1 || !ask) {
        launch();
        return;
    }
    // The window's own words, in its translation context.
    auto *box = new QMessageBox(QMessageBox::Question, QCoreApplication::translate("Quillon::MainWindow", "Launch All Now"),
        QCoreApplication::translate("Quillon::MainWindow", "Open all %n items now?", nullptr, count), QMessageBox::Cancel, parent);
    box->setObjectName(QStringLiteral("confirmLaunchAll"));
    box->setInformativeText(QCoreApplication::translate("Quillon::MainWindow", "Every item opens, every script runs and every notice is mailed, at once."));
    QPushButton *openAll = box->addButton(QCoreApplication::translate("Quillon::MainWindow", "Open All"), QMessageBox::AcceptRole);
    box->setDefaultButton(openAll);
    box->setCheckBox(new QCheckBox(QCoreApplication::translate("Quillon::MainWindow", "Don't ask again"), box));
    box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(box, &QMessageBox::buttonClicked, box, [&preferences, box, openAll, launch](QAbstractButton *clicked) {
        if (clicked != openAll)
            return;
        if (box->checkBox()->isChecked())
            preferences.setValue(Keys::ConfirmLaunchAll, false);
        launch();
    });
    box->open();
}

} // namespace Quillon
