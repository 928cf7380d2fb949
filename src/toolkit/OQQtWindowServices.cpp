#include "toolkit/OQQtWindowServices.h"

#include "foundation/IOQMessageQueue.h"
#include "foundation/OQStringArray.h"
#include "toolkit/OQDialogScope.h"
#include "toolkit/OQToolkit.h"
#include "toolkit/QtText.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace {

QMessageBox::Icon IconOf(int32_t kind)
{
    switch (kind) {
    case OQMessageBoxWarning:
        return QMessageBox::Warning;
    case OQMessageBoxError:
        return QMessageBox::Critical;
    case OQMessageBoxQuestion:
        return QMessageBox::Question;
    default:
        return QMessageBox::Information;
    }
}

int32_t AnswerOf(int button)
{
    switch (button) {
    case QMessageBox::Ok:
        return OQMessageBoxOk;
    case QMessageBox::Yes:
        return OQMessageBoxYes;
    case QMessageBox::No:
        return OQMessageBoxNo;
    default:
        return OQMessageBoxClosed;
    }
}

// "Scripts|*.pxv;*.txt|All files|*" as Qt has it: "Scripts (*.pxv *.txt)", "All files (*)".
QStringList NameFilters(const OQChar* filter)
{
    OQStringArray parts;
    OQString(filter).Split(u'|', parts);
    QStringList filters;
    for (int i = 0; i + 1 < parts.GetCount(); i += 2) {
        const QString patterns = OQToQt(parts[i + 1]).replace(u';', u' ');
        filters << QStringLiteral("%1 (%2)").arg(OQToQt(parts[i]), patterns);
    }
    return filters;
}

void SetUp(QFileDialog& dialog, const OQFileDialogSetup& setup)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setAcceptMode(setup.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(setup.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (setup.title)
        dialog.setWindowTitle(OQToQt(setup.title));
    if (const QStringList filters = NameFilters(setup.filter); !filters.isEmpty())
        dialog.setNameFilters(filters);
    if (setup.extension)
        dialog.setDefaultSuffix(OQToQt(setup.extension));
    if (!setup.path)
        return;
    const QFileInfo path(OQToQt(setup.path));
    if (path.isDir()) {
        dialog.setDirectory(path.filePath());
    } else {
        dialog.setDirectory(path.path());
        dialog.selectFile(path.fileName());
    }
}

}

int32_t OQQtWindowServices::ShowMessageBox(
    uintptr_t owner, const OQChar* title, const OQChar* text, int32_t kind)
{
    if (!OQToolkit::Get().EnsureApplication())
        return OQMessageBoxClosed;
    QMessageBox box(IconOf(kind), OQToQt(title), OQToQt(text),
        kind == OQMessageBoxQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText); // names of files stand in it, too
    const OQDialogScope scope(box, owner);
    return AnswerOf(box.exec());
}

bool OQQtWindowServices::ChooseFile(
    uintptr_t owner, const OQFileDialogSetup& setup, IOQDllString& path)
{
    path.Clear();
    if (!OQToolkit::Get().EnsureApplication())
        return false;
    QFileDialog dialog;
    SetUp(dialog, setup);
    const OQDialogScope scope(dialog, owner);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    path.SetText(OQFromQt(dialog.selectedFiles().first()).GetText(), -1);
    return true;
}

void OQQtWindowServices::PumpMessages()
{
    if (IOQMessageQueues* const queues = IOQMessageQueues::Get())
        queues->Pump();
    else
        OQToolkit::Get().PumpQt(0);
}
