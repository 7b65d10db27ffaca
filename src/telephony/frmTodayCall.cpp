#include "frmTodayCall.h"

#include "data/RecordsetModel.h"

#include <QTreeWidget>
#include <QVBoxLayout>

frmTodayCall::frmTodayCall(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("frmTodayCall"));
    setWindowTitle(QStringLiteral("来电记录"));
    lsvTodayCall = new QTreeWidget(this);
    lsvTodayCall->setObjectName(QStringLiteral("lsvTodayCall"));
    lsvTodayCall->setRootIsDecorated(false);
    lsvTodayCall->setHeaderLabels({QStringLiteral("来电时间"), QStringLiteral("来电号码"), QStringLiteral("客户姓名"),
                                   QStringLiteral("客户地址")});
    const int widthsTwips[] = {2540, 2540, 2540, 7056};
    for (int i = 0; i < 4; ++i)
        lsvTodayCall->setColumnWidth(i, RecordsetModel::twipsToPixels(widthsTwips[i]));
    // The list fills the window at every size.
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(lsvTodayCall);
}
