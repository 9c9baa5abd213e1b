#pragma once

#include <QImage>
#include <QWidget>

namespace yunqi {

// MDIForm1.Picture1: the band along the top. Its first 8850 twips stay as
// drawn, the slice at 8850 repeats to fill a wide window, and the last 4000
// close the band at the right edge.
class Banner : public QWidget {
  public:
    explicit Banner(QWidget* parent = nullptr);
    // The design picture: 1028 by 54 pixels.
    static QImage DesignPicture();
    // The band for a client width, in pixels.
    static QImage Paint(const QImage& design, int clientWidth);

  protected:
    void paintEvent(QPaintEvent*) override;

  private:
    QImage design_;
};

}  // namespace yunqi
