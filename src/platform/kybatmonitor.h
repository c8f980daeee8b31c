#ifndef KYBATMONITOR_H
#define KYBATMONITOR_H

/** What the charge meter measured last. */
struct cmeter_data {
    /** Charging has not ended; meaningful with the charger present and @ref charge >= 0. */
    unsigned char flag;
    /** Charge in percent; negative while the battery is being charged. */
    int charge;
    /** Battery voltage. */
    unsigned short voltage;
};

/** Battery charge meter; libKyBoard.so.1. */
class KyBatmonitor
{
public:
    KyBatmonitor();
    virtual ~KyBatmonitor();
    KyBatmonitor(const KyBatmonitor &) = delete;
    KyBatmonitor &operator=(const KyBatmonitor &) = delete;

    /** Tells the monitor whether the charger is connected; 0 on success. */
    int update(bool chargerPresent);

    /** The type of charge meter fitted; 1 and 2 report a percentage with its direction. */
    int getCmeterType();

    /** Fills @p data with the last measurement; 0 on success. */
    int getBatteryInfo(cmeter_data *data);

    /** Brings the charge meter into the state in which power may be cut; 0 on success. */
    int prepareForShutdown();

private:
    void *m_handle;
};

#endif
