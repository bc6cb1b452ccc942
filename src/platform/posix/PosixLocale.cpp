// The user's language as a locale identifier, from the environment. A territory that has no identifier of its
// own takes its language's main one; an unknown language is English (United States).
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/Convert.h"
#include "platform/Locale.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;

struct Entry {
    std::string_view name;
    std::int32_t id;
};

// The first row of a language is its main one.
constexpr Entry kLocales[] = {
    {"af_ZA", 1078},  {"am_ET", 1118},  {"ar_SA", 1025},  {"ar_AE", 14337}, {"ar_BH", 15361},
    {"ar_DZ", 5121},  {"ar_EG", 3073},  {"ar_IQ", 2049},  {"ar_JO", 11265}, {"ar_KW", 13313},
    {"ar_LB", 12289}, {"ar_LY", 4097},  {"ar_MA", 6145},  {"ar_OM", 8193},  {"ar_QA", 16385},
    {"ar_SY", 10241}, {"ar_TN", 7169},  {"ar_YE", 9217},  {"az_AZ", 1068},  {"be_BY", 1059},
    {"bg_BG", 1026},  {"bn_IN", 1093},  {"bn_BD", 2117},  {"bs_BA", 5146},  {"ca_ES", 1027},
    {"cs_CZ", 1029},  {"cy_GB", 1106},  {"da_DK", 1030},  {"de_DE", 1031},  {"de_AT", 3079},
    {"de_CH", 2055},  {"de_LI", 5127},  {"de_LU", 4103},  {"el_GR", 1032},  {"en_US", 1033},
    {"en_AU", 3081},  {"en_BZ", 10249}, {"en_CA", 4105},  {"en_GB", 2057},  {"en_IE", 6153},
    {"en_IN", 16393}, {"en_JM", 8201},  {"en_MY", 17417}, {"en_NZ", 5129},  {"en_PH", 13321},
    {"en_SG", 18441}, {"en_TT", 11273}, {"en_ZA", 7177},  {"en_ZW", 12297}, {"es_ES", 3082},
    {"es_AR", 11274}, {"es_BO", 16394}, {"es_CL", 13322}, {"es_CO", 9226},  {"es_CR", 5130},
    {"es_DO", 7178},  {"es_EC", 12298}, {"es_GT", 4106},  {"es_HN", 18442}, {"es_MX", 2058},
    {"es_NI", 19466}, {"es_PA", 6154},  {"es_PE", 10250}, {"es_PR", 20490}, {"es_PY", 15370},
    {"es_SV", 17418}, {"es_US", 21514}, {"es_UY", 14346}, {"es_VE", 8202},  {"et_EE", 1061},
    {"eu_ES", 1069},  {"fa_IR", 1065},  {"fi_FI", 1035},  {"fil_PH", 1124}, {"fo_FO", 1080},
    {"fr_FR", 1036},  {"fr_BE", 2060},  {"fr_CA", 3084},  {"fr_CH", 4108},  {"fr_LU", 5132},
    {"fr_MC", 6156},  {"ga_IE", 2108},  {"gl_ES", 1110},  {"gu_IN", 1095},  {"he_IL", 1037},
    {"hi_IN", 1081},  {"hr_HR", 1050},  {"hu_HU", 1038},  {"hy_AM", 1067},  {"id_ID", 1057},
    {"is_IS", 1039},  {"it_IT", 1040},  {"it_CH", 2064},  {"ja_JP", 1041},  {"ka_GE", 1079},
    {"kk_KZ", 1087},  {"km_KH", 1107},  {"kn_IN", 1099},  {"ko_KR", 1042},  {"ky_KG", 1088},
    {"lb_LU", 1134},  {"lo_LA", 1108},  {"lt_LT", 1063},  {"lv_LV", 1062},  {"mi_NZ", 1153},
    {"mk_MK", 1071},  {"ml_IN", 1100},  {"mn_MN", 1104},  {"mr_IN", 1102},  {"ms_MY", 1086},
    {"ms_BN", 2110},  {"mt_MT", 1082},  {"nb_NO", 1044},  {"no_NO", 1044},  {"ne_NP", 1121},
    {"nl_NL", 1043},  {"nl_BE", 2067},  {"nn_NO", 2068},  {"pa_IN", 1094},  {"pl_PL", 1045},
    {"ps_AF", 1123},  {"pt_BR", 1046},  {"pt_PT", 2070},  {"ro_RO", 1048},  {"ru_RU", 1049},
    {"sk_SK", 1051},  {"sl_SI", 1060},  {"sq_AL", 1052},  {"sr_RS", 10266}, {"sv_SE", 1053},
    {"sv_FI", 2077},  {"sw_KE", 1089},  {"ta_IN", 1097},  {"te_IN", 1098},  {"th_TH", 1054},
    {"tr_TR", 1055},  {"tt_RU", 1092},  {"uk_UA", 1058},  {"ur_PK", 1056},  {"uz_UZ", 1091},
    {"vi_VN", 1066},  {"zh_CN", 2052},  {"zh_HK", 3076},  {"zh_MO", 5124},  {"zh_SG", 4100},
    {"zh_TW", 1028},  {"zu_ZA", 1077},
};

std::string_view LanguageOf(std::string_view name) {
    return name.substr(0, name.find('_'));
}

// "pt_BR.UTF-8@modifier" by its language and territory.
std::int32_t LocaleIdOf(std::string_view setting) {
    std::string name(setting.substr(0, setting.find_first_of(".@")));
    for (char& c : name) {
        if (c == '-') c = '_';
    }
    for (const Entry& entry : kLocales) {
        if (EqualsIgnoringCase(entry.name, name)) return entry.id;
    }
    for (const Entry& entry : kLocales) {
        if (EqualsIgnoringCase(LanguageOf(entry.name), LanguageOf(name))) return entry.id;
    }
    return kEnglish;
}

class PosixLocale final : public Locale {
 public:
    std::int32_t UserLocaleId() const override {
        for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* const value = std::getenv(variable);
            if (value && *value) return LocaleIdOf(value);
        }
        return kEnglish;
    }
};

}  // namespace

std::shared_ptr<Locale> MakePosixLocale() {
    return std::make_shared<PosixLocale>();
}

}  // namespace kq
