// The yardstick for the workbook export: a bare libxlsxwriter program writing
// cells of the same kinds and formats as an invoice statement of ROWS rows and
// FEES fee columns, in the same constant-memory mode.
//   xlsx_yardstick_bench [ROWS] [FEES] [PATH]
#include <sys/resource.h>
#include <xlsxwriter.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int fees = argc > 2 ? std::atoi(argv[2]) : 24;
    const char* path = argc > 3 ? argv[3] : "/tmp/yunqi-yardstick.xlsx";
    const int cols = fees + 9;
    const auto start = std::chrono::steady_clock::now();

    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* book = workbook_new_opt(path, &options);
    lxw_worksheet* ws = workbook_add_worksheet(book, nullptr);
    auto format = [&](uint8_t align, const char* numberFormat, bool fill) {
        lxw_format* f = workbook_add_format(book);
        format_set_align(f, align);
        format_set_align(f, LXW_ALIGN_VERTICAL_CENTER);
        if (numberFormat) format_set_num_format(f, numberFormat);
        if (fill) {
            format_set_pattern(f, LXW_PATTERN_SOLID);
            format_set_bg_color(f, 0xC0C0FF);
        }
        format_set_font_name(f, "微软雅黑");
        format_set_font_size(f, 9);
        format_set_border(f, LXW_BORDER_THIN);
        format_set_text_wrap(f);
        return f;
    };
    lxw_format* center = format(LXW_ALIGN_CENTER, nullptr, false);
    lxw_format* date = format(LXW_ALIGN_CENTER, "yyyy-mm-dd", false);
    lxw_format* money = format(LXW_ALIGN_RIGHT, "#0.00", false);
    lxw_format* plain = format(LXW_ALIGN_NONE, nullptr, false);
    lxw_format* header = format(LXW_ALIGN_CENTER, nullptr, true);
    for (int c = 0; c < cols; ++c) worksheet_set_column(ws, c, c, 11, nullptr);
    worksheet_merge_range(ws, 0, 0, 0, cols - 1, "标题", nullptr);
    worksheet_write_string(ws, 1, 0, " 统计部门 : 01 云栖苑", plain);
    worksheet_write_string(ws, 2, 0, " 开票日期 : 2024-01-01 至 2024-12-31", plain);
    for (int h = 3; h <= 4; ++h)
        for (int c = 0; c < cols; ++c) worksheet_write_string(ws, h, c, "物业服务费", header);

    char number[16];
    for (int r = 0; r < rows; ++r) {
        const lxw_row_t row = r + 5;
        worksheet_write_number(ws, row, 0, r + 1, center);
        worksheet_write_number(ws, row, 1, 45300 + r % 366, date);
        std::snprintf(number, sizeof number, "%08d", r);
        for (int c = 2; c <= 5; ++c) {
            if (c == 2 + r % 4)
                worksheet_write_string(ws, row, c, number, center);
            else
                worksheet_write_blank(ws, row, c, center);
        }
        for (int c = 6; c <= fees + 6; ++c)
            worksheet_write_number(ws, row, c, (r % 1000) * 1.25 + c, money);
        worksheet_write_string(ws, row, cols - 2, "微信支付", plain);
        worksheet_write_string(ws, row, cols - 1, "云栖科技有限公司 16幢492室", plain);
    }
    worksheet_write_string(ws, rows + 5, 1, "收款人:", nullptr);
    workbook_close(book);

    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("yardstick: %d rows x %d columns in %.3f s, peak %.0f MB\n", rows, cols, seconds,
                usage.ru_maxrss / 1024.0);
    return 0;
}
