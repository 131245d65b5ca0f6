// Runs the fuzz target once over every file of the corpus folders given, without libFuzzer.
#include <QDirIterator>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char *argv[])
{
    int count = 0;
    for (int a = 1; a < argc; ++a) {
        for (QDirIterator it(QString::fromLocal8Bit(argv[a]), QDir::Files); it.hasNext();) {
            QFile f(it.next());
            if (!f.open(QIODevice::ReadOnly))
                return 1;
            const QByteArray data = f.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size()));
            ++count;
        }
    }
    std::printf("replayed %d inputs\n", count);
    return count > 0 ? 0 : 1;
}
