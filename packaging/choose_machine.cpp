#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTranslator>

#include "base/twin.h"

/// What a desktop starts: asks which Windows is meant, and gives way to the program. A restriction file that
/// was opened by a double click goes along.
namespace {

constexpr Twin question{"Auf welcher Windows-Installation soll gearbeitet werden?",
                        "Which Windows installation do you want to work on?"};
constexpr Twin explanation{
    "Gemeint ist der Ordner, der das Laufwerk C ist, zum Beispiel der einer eingebundenen Festplatte.",
    "It is the folder that is its drive C, such as that of a mounted disk."};
constexpr Twin choose{"Ordner...", "Folder..."};
constexpr Twin sample{"Beispiel", "Sample"};

QString said(const Twin& twin) { return QString::fromLatin1(pick(twin, BRITLOCK_LANGUAGE)); }

QString program() { return QCoreApplication::applicationDirPath() + "/britlock"; }

/// Made at the first use.
QString sample_folder() {
    QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/brightlock/sample-xp";
    if (!QFileInfo::exists(folder)) QProcess::execute(program(), {"--make-sample", folder});
    return folder;
}

QString ask_folder() {
    QSettings remembered("brightlock", "choose-machine");
    QString folder = QFileDialog::getExistingDirectory(nullptr, said(question),
                                                       remembered.value("folder", "/").toString());
    if (!folder.isEmpty()) remembered.setValue("folder", folder);
    return folder;
}

QString ask_machine() {
    QMessageBox box(QMessageBox::Question, "Brightlock Suite", said(question), QMessageBox::Cancel);
    box.setInformativeText(said(explanation));
    QPushButton* const by_folder = box.addButton(said(choose), QMessageBox::AcceptRole);
    const QPushButton* const by_sample = box.addButton(said(sample), QMessageBox::ActionRole);
    box.setDefaultButton(by_folder);
    box.exec();
    if (box.clickedButton() == by_folder) return ask_folder();
    return box.clickedButton() == by_sample ? sample_folder() : QString();
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon::fromTheme("brightlock-suite"));
    QTranslator words;  // of Qt's own buttons and folder dialog
    if (BRITLOCK_LANGUAGE == german &&
        words.load("qtbase_de", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&words);
    const QString machine = ask_machine();
    if (machine.isEmpty()) return 0;
    const QStringList file = QApplication::arguments().mid(1);
    return QProcess::startDetached(program(), QStringList{"--machine", machine} + file) ? 0 : 1;
}
