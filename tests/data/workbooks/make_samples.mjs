// Makes sheetjs.xls and sheetjs.xlsx of this folder with the npm package "xlsx" 0.18.5. Not run by any test.
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
