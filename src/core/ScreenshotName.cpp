#include "core/ScreenshotName.h"

#include "core/Fold.h"

namespace lumivale::ScreenshotName {

const std::vector<std::string>& prefixes() {
    // Folded once here, so the table always agrees with folded names: folding turns a Greek
    // final sigma into a plain one and drops the Devanagari and Thai marks.
    static const std::vector<std::string> table = [] {
        const char* const written[] = {
            "screenshot",
            "screen shot",
            "cleanshot",
            "simulator screen",
            "screen recording",
            "bildschirmfoto",
            "capture d'ecran",
            "capture d\u2019ecran",
            "captura de pantalla",
            "captura de ecra",
            "captura de tela",
            "istantanea",
            "schermafbeelding",
            "skarmavbild",
            "skjermbilde",
            "skaermbillede",
            "nayttokuva",
            "zrzut ekranu",
            "snimek obrazovky",
            "snimka obrazovky",
            "kepernyofoto",
            "ekran resmi",
            "снимок экрана",
            "знімок екрана",
            "στιγμιοτυπο οθονης",
            "צילום מסך",
            "لقطة شاشة",
            "स्क्रीनशॉट",
            "ภาพหน้าจอ",
            "ảnh màn hình",
            "tangkapan layar",
            "petikan skrin",
            "captura de pantalla",
            "スクリーンショット",
            "截屏",
            "屏幕快照",
            "截圖",
            "螢幕快照",
            "스크린샷",
        };
        std::vector<std::string> folded;
        folded.reserve(std::size(written));
        for (const char* prefix : written)
            folded.push_back(foldText(prefix));
        return folded;
    }();
    return table;
}

bool looksLikeScreenshot(std::string_view name) {
    const std::string folded = foldText(name);
    for (const std::string& prefix : prefixes())
        if (folded.starts_with(prefix)) return true;
    return false;
}

} // namespace lumivale::ScreenshotName
