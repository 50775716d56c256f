#pragma once
// Numbers of the main image list that the main window's own parts use. The skin knows the pictures.

namespace pw {

enum Picture {
    kPictureProject = 1,
    kPictureWebSite = 2,
    kPictureWindow = 3,
    kPictureChangedWindow = 4,
    kPicturePage = 5,
    kPictureFramePage = 6,
    kPictureFolder = 7,
    kPictureOpenFolder = 8,
    kPictureDefaultPage = 10,
    kPictureTask = 11,
    kPictureFinishedTask = 12,
    kPictureBody = 23,
    kPictureFrameset = 39,
    kPictureSlow = 57,
    kPictureQuick = 58,
    kPictureOnline = 59,
    kPictureOffline = 60,
};

}  // namespace pw
