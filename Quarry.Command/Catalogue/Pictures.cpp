#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Operation FrameDifference() {
    return {
        "frame-difference",
        "Absolute difference of two frames, byte by byte",
        Kind::Processor,
        "CreateCVImageAbsSubtractor",
        "diff",
        "",
        QUARRY_RECORD(BinaryImageOperationOptions, "Holds nothing that is read.",
                      QUARRY_FIELD(BinaryImageOperationOptions, Header, kHeader),
                      QUARRY_FIELD(BinaryImageOperationOptions, Reserved, kNotRead),
                      QUARRY_FIELD(BinaryImageOperationOptions, ReservedByte, kNotRead)),
        QUARRY_RECORD(
            BinaryImageOperationData, "Two frames of the same size.",
            QUARRY_FIELD(BinaryImageOperationData, Header, kHeader),
            QUARRY_FIELD(BinaryImageOperationData, FirstImage,
                         "8-bit, 3 channels, rows packed; stride and timestamp go to the result"),
            QUARRY_FIELD(BinaryImageOperationData, SecondImage, "only data is read: its size is that of the first")),
        QUARRY_RECORD(ImageOperationResult, "The difference; give it back with DisposeResult.",
                      QUARRY_FIELD(ImageOperationResult, Status, kStatus),
                      QUARRY_FIELD(ImageOperationResult, Image,
                                   "the first frame's size, stride and timestamp; rows packed, bytes 0..255")),
        {kWrongFrame,
         {"cv::Exception", "data of either frame is null while the frame is not empty"},
         {"std::invalid_argument",
          "the first frame's size is negative, or its stride leaves no room for packed rows (3 x width bytes each)"}}};
}

Operation Denoising() {
    return {
        "nl-means-denoising",
        "A denoised copy of a colour frame, by non-local means with fixed strength",
        Kind::Processor,
        "CreateCVFastNlMeansDenoisingFilter",
        "denoise",
        "Buades, Coll and Morel, IPOL 2011",
        QUARRY_RECORD(FilterOptions, "Holds nothing that is read: the strength is 10 for lightness and for colour.",
                      QUARRY_FIELD(FilterOptions, Header, kHeader), QUARRY_FIELD(FilterOptions, Reserved, kNotRead)),
        QUARRY_RECORD(
            FilterData, "A frame to denoise.", QUARRY_FIELD(FilterData, Header, kHeader),
            QUARRY_FIELD(FilterData, Image, "8-bit B, G, R, rows packed; stride and timestamp go to the result")),
        QUARRY_RECORD(FilterResult, "The denoised frame; give it back with DisposeResult.",
                      QUARRY_FIELD(FilterResult, Status, kStatus),
                      QUARRY_FIELD(FilterResult, Image, "the frame's size, stride and timestamp; rows packed")),
        {kWrongFrame,
         {"cv::Exception", "data is null while the frame is not empty, or width and height are both negative"},
         {"std::invalid_argument", "stride leaves no room for packed rows (3 x width bytes each)"}}};
}

Operation CosineSimilarity() {
    return {"cosine-similarity",
            "Cosine similarity of two embeddings of 512 values, such as descriptors of faces",
            Kind::Processor,
            "CreateCVCosineSimilarity",
            "similarity",
            "",
            PlainOptions(),
            QUARRY_RECORD(EmbeddingData, "Two embeddings.", QUARRY_FIELD(EmbeddingData, Header, kHeader),
                          QUARRY_FIELD(EmbeddingData, FirstReserved, kNotRead),
                          QUARRY_FIELD(EmbeddingData, FirstEmbedding, "512 values"),
                          QUARRY_FIELD(EmbeddingData, SecondReserved, kNotRead),
                          QUARRY_FIELD(EmbeddingData, SecondEmbedding, "512 values")),
            QUARRY_RECORD(CosineOutputData, "The similarity; holds no buffer.",
                          QUARRY_FIELD(CosineOutputData, Status, kStatus),
                          QUARRY_FIELD(CosineOutputData, Similarity,
                                       "cosine of the angle between them, -1..1; not a number when one is all zeros")),
            {kWrongFrame, {"std::invalid_argument", "an embedding is null"}}};
}

}  // namespace

std::vector<Operation> PictureOperations() {
    return {FrameDifference(), CosineSimilarity(), Denoising()};
}

}  // namespace quarry::command
