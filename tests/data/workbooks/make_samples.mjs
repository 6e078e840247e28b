// Makes the samples of this folder by the npm packages "xlsx" 0.18.5 and "exceljs" 4.4.0. Not run by any test.
import exceljs from "exceljs";
import xlsx from "xlsx";

const headers = ["模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数", "结算方式", "结算号", "核算项目",
  "币别", "汇率", "原币金额", "计量单位", "数量", "单价", "金额", "备注"];
const rows = [
  [1, "提取现金", "借", "1001.10", "现金", 2, "支票", "0012", "01.01,02", "人民币", 1, 12.5, "公斤", 3, 0.1, 1234.56, "备注𠮷"],
  [1, null, "贷", 1002, "银行存款", null, null, null, null, "美元", 7.1234, 0.30000000000000004, null, null, null, -5, "=1+1"],
];
const book = xlsx.utils.book_new();
xlsx.utils.book_append_sheet(book, xlsx.utils.aoa_to_sheet([["a"]]), "其他");
xlsx.utils.book_append_sheet(book, xlsx.utils.aoa_to_sheet([headers, ...rows]), "凭证模板");
xlsx.writeFile(book, "sheetjs.xls", { bookType: "biff8" });
xlsx.writeFile(book, "sheetjs.xlsx");

// What people do to a sheet: another sheet order, a hidden sheet and column, merged cells, a filter, a comment, frozen
// panes, full-width headers, dates counted from 1904.
const fullWidth = headers.map((header) => header.replace("(", "（").replace(")", "）"));
const day = 43831; // 2024-01-02 counted from 1904

function sheetjsFeatures() {
  const book = xlsx.utils.book_new();
  const sheet = xlsx.utils.aoa_to_sheet([fullWidth, ...rows]);
  sheet["!merges"] = [{ s: { r: 1, c: 1 }, e: { r: 2, c: 1 } }];
  sheet["!autofilter"] = { ref: "A1:Q3" };
  sheet["!cols"] = headers.map((_, column) => ({ wch: 12, hidden: column === 7 }));
  sheet.A1.c = [{ a: "somebody", t: "批注" }];
  sheet.A1.c.hidden = true;
  const dates = xlsx.utils.aoa_to_sheet([[{ t: "n", v: day, z: "yyyy-mm-dd" }]]);
  xlsx.utils.book_append_sheet(book, sheet, "凭证模板");
  xlsx.utils.book_append_sheet(book, dates, "日期");
  xlsx.utils.book_append_sheet(book, xlsx.utils.aoa_to_sheet([["b"]]), "隐藏");
  book.Workbook = { WBProps: { date1904: true }, Sheets: [{ Hidden: 0 }, { Hidden: 0 }, { Hidden: 1 }] };
  xlsx.writeFile(book, "sheetjs-features.xls", { bookType: "biff8" });
  xlsx.writeFile(book, "sheetjs-features.xlsx", { compression: true });
}

async function exceljsSample() {
  const book = new exceljs.Workbook();
  book.properties.date1904 = true;
  const dates = book.addWorksheet("日期");
  dates.getCell("A1").value = new Date(Date.UTC(2024, 0, 2));
  dates.getCell("A1").numFmt = "yyyy-mm-dd";
  book.addWorksheet("隐藏", { state: "hidden" }).getCell("A1").value = "b";
  const sheet = book.addWorksheet("凭证模板", { views: [{ state: "frozen", ySplit: 1 }] });
  sheet.addRow(fullWidth).font = { bold: true };
  for (const row of rows) sheet.addRow(row);
  sheet.getCell("A1").value = { richText: [{ text: "模板" }, { font: { bold: true }, text: "编号（*）" }] };
  sheet.getCell("B2").note = "批注";
  sheet.mergeCells("B2:B3");
  sheet.autoFilter = "A1:Q3";
  sheet.getColumn(8).hidden = true;
  for (let row = 1; row <= 6; ++row)
    for (let column = 1; column <= 17; ++column)
      sheet.getCell(row, column).border = { top: { style: "thin" }, bottom: { style: "thin" } };
  await book.xlsx.writeFile("exceljs.xlsx");
}

sheetjsFeatures();
await exceljsSample();
