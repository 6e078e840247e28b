#include "store/template_health.h"

#include "platform/ado/recordset.h"

namespace vicenter::store {

namespace {

struct Question {
    const char*
        fault;  // what is wrong with the rows, each named by its first column and counted by its second
    const char* query;
};

constexpr Question kQuestions[] = {
    {"凭证模板分录没有模板",
     "select e.FID,count(*) as FCount from t_VchTemplateEntry e where not exists (select 1 from "
     "t_VchTemplate t "
     "where t.FID = e.FID) group by e.FID order by e.FID"},
    {"凭证模板控制行没有模板",
     "select c.FID,count(*) as FCount from t_VchTpControl c where not exists (select 1 from t_VchTemplate t "
     "where t.FID = c.FID) group by c.FID order by c.FID"},
    {"凭证模板控制行没有分录",
     "select c.FID,count(*) as FCount from t_VchTpControl c where exists (select 1 from t_VchTemplate t "
     "where t.FID = c.FID) and not exists (select 1 from t_VchTemplateEntry e where e.FID = c.FID and e.FNo "
     "= c.FNo) group by c.FID order by c.FID"},
    {"凭证模板内码重复",
     "select FID,count(*) as FCount from t_VchTemplate group by FID having count(*) > 1 order by FID"},
    {"凭证模板分录内码重复",
     "select FID,count(*) as FCount from t_VchTemplateEntry group by FID,FEntryID having count(*) > 1 order "
     "by FID"},
    {"凭证模板名称重复",
     "select min(FID) as FID,count(*) as FCount from t_VchTemplate group by FName having count(*) > 1 order "
     "by min(FID)"},
    {"凭证模板的用户不存在",
     "select FID,1 as FCount from t_VchTemplate where FID <> 0 and FUserID not in (select FUserID from "
     "t_User) order by FID"},
    {"标准模板不属于所有用户", "select FID,1 as FCount from t_VchTemplate where FID = 0 and FUserID <> 0"},
    {"凭证模板分录的借贷方向既不是借也不是贷",
     "select FID,count(*) as FCount from t_VchTemplateEntry where FDC not in (0,1) group by FID order by "
     "FID"},
};

}  // namespace

std::vector<std::string> FindTemplateFaults(ado::Connection& connection) {
    std::vector<std::string> faults;
    for (const Question& question : kQuestions) {
        const ado::RecordsetRef rows = connection.Execute(question.query);
        for (; !rows->AtEnd(); rows->MoveNext()) {
            faults.push_back(std::string(question.fault) + "：FID " + rows->Value("FID").ToText() + "，" +
                             rows->Value("FCount").ToText() + " 处");
        }
    }
    return faults;
}

}  // namespace vicenter::store
