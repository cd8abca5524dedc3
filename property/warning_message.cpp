#include "property/warning_message.h"

#include <QMessageBox>

void TovikIotWarningMsg(QString text, QString informative_text)
{
    QMessageBox box;
    box.setText(text);
    box.setInformativeText(informative_text);
    box.setIcon(QMessageBox::Critical);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}
