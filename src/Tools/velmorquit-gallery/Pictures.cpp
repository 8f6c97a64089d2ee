#include "Pictures.h"

namespace velmorquit {

const std::vector<Picture>& pictures() {
    static const std::vector<Picture> all = [] {
        std::vector<Picture> list;
        for (const auto& part : {restPictures(), schedulePictures(), runPictures(), endPictures(),
                                 desktopPictures(), menuPictures(), shapePictures()})
            list.insert(list.end(), part.begin(), part.end());
        return list;
    }();
    return all;
}

} // namespace velmorquit
