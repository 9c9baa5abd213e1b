#include "shell/widgets/Banner.h"

#include <QLinearGradient>
#include <QPainter>

#include "frame/widgets/Twips.h"

namespace yunqi {

Banner::Banner(QWidget* parent) : QWidget(parent), design_(DesignPicture()) {
    setObjectName(QStringLiteral("Picture1"));
    setFixedHeight(design_.height());
}

QImage Banner::DesignPicture() {
    QImage image(1028, 54, QImage::Format_RGB888);
    QPainter p(&image);
    QLinearGradient band(0, 0, 0, 54);
    band.setColorAt(0, QColor(40, 96, 160));
    band.setColorAt(1, QColor(20, 60, 120));
    p.fillRect(image.rect(), band);
    p.setPen(QColor(255, 255, 255));
    QFont f;
    f.setFamilies({QStringLiteral("微软雅黑"), QStringLiteral("Noto Sans CJK SC")});
    f.setPixelSize(24);
    f.setBold(true);
    p.setFont(f);
    p.drawText(QRect(20, 0, 560, 54), Qt::AlignVCenter, QStringLiteral("云栖账房报表"));
    p.setPen(QColor(120, 170, 220));
    p.drawLine(760, 44, 1020, 44);
    return image;
}

QImage Banner::Paint(const QImage& design, int clientWidth) {
    QImage out(std::max(clientWidth, 1), design.height(), QImage::Format_RGB888);
    out.fill(Qt::white);
    QPainter p(&out);
    const int w = clientWidth * kTwipsPerPixel;
    p.drawImage(0, 0, design);
    const QRect slice(8850 / kTwipsPerPixel, 0, 300 / kTwipsPerPixel, design.height());
    for (int i = 1; i <= 10000; ++i) {
        const int x = 300 * i + 8850;
        if (!(w - 4000 > x)) break;
        p.drawImage(QPoint(x / kTwipsPerPixel, 0), design, slice);
    }
    p.drawImage(QPoint((w - 4000) / kTwipsPerPixel, 0), design,
                QRect(8850 / kTwipsPerPixel, 0, 4000 / kTwipsPerPixel, design.height()));
    return out;
}

void Banner::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.drawImage(0, 0, Paint(design_, width()));
}

}  // namespace yunqi
