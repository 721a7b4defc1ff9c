-- Calculation rules of the sample pack: the quantities a component of each small category
-- offers, as formulas over L (length), N (count) and S (area); position 0 is the category's
-- default. An item's name stands for one code and one formula wherever it appears, since the
-- host looks an item up by its name alone. Loaded after schema.sql.
--
-- 弱电\箱柜\接线箱 has no items on purpose: the sample needs a category without
-- calculation rules.

INSERT INTO library (key, value) VALUES
  ('kind', 'rules'),
  ('name', '示范计算规则');

-- 建筑\墙
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('建筑\墙\砌体墙', 0, '面积', 'MJ', 'S'),
  ('建筑\墙\砌体墙', 1, '长度', 'CD', 'L'),
  ('建筑\墙\混凝土墙', 0, '面积', 'MJ', 'S'),
  ('建筑\墙\混凝土墙', 1, '长度', 'CD', 'L');

-- 建筑\门窗
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('建筑\门窗\门', 0, '数量', 'SL', 'N'),
  ('建筑\门窗\门', 1, '洞口面积', 'DKMJ', 'S'),
  ('建筑\门窗\窗', 0, '数量', 'SL', 'N'),
  ('建筑\门窗\窗', 1, '洞口面积', 'DKMJ', 'S');

-- 建筑\楼板
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('建筑\楼板\现浇板', 0, '面积', 'MJ', 'S'),
  ('建筑\楼板\预制板', 0, '面积', 'MJ', 'S');

-- 给排水\管道
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\管道\给水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\给水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('给排水\管道\给水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('给排水\管道\给水管', 3, '保温体积', 'BWTJ', 'L*0.0085'),
  ('给排水\管道\排水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\排水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('给排水\管道\热水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\热水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('给排水\管道\热水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('给排水\管道\热水管', 3, '保温体积', 'BWTJ', 'L*0.0085'),
  ('给排水\管道\中水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\中水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('给排水\管道\中水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('给排水\管道\雨水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\雨水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('给排水\管道\压力排水管', 0, '长度', 'CD', 'L'),
  ('给排水\管道\压力排水管', 1, '含损耗长度', 'SHCD', 'L*1.02');

-- 给排水\阀门法兰
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\阀门法兰\阀门', 0, '数量', 'SL', 'N'),
  ('给排水\阀门法兰\法兰', 0, '副数', 'FS', 'N/2'),
  ('给排水\阀门法兰\法兰', 1, '片数', 'PS', 'N'),
  ('给排水\阀门法兰\水表', 0, '数量', 'SL', 'N'),
  ('给排水\阀门法兰\过滤器', 0, '数量', 'SL', 'N');

-- 给排水\卫生器具
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\卫生器具\洗脸盆', 0, '数量', 'SL', 'N'),
  ('给排水\卫生器具\大便器', 0, '数量', 'SL', 'N'),
  ('给排水\卫生器具\小便器', 0, '数量', 'SL', 'N'),
  ('给排水\卫生器具\淋浴器', 0, '数量', 'SL', 'N'),
  ('给排水\卫生器具\地漏', 0, '数量', 'SL', 'N'),
  ('给排水\卫生器具\洗涤盆', 0, '数量', 'SL', 'N');

-- 给排水\给排水设备
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\给排水设备\水泵', 0, '数量', 'SL', 'N'),
  ('给排水\给排水设备\水箱', 0, '数量', 'SL', 'N'),
  ('给排水\给排水设备\热水器', 0, '数量', 'SL', 'N'),
  ('给排水\给排水设备\气压罐', 0, '数量', 'SL', 'N');

-- 给排水\管道附件
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('给排水\管道附件\套管', 0, '数量', 'SL', 'N'),
  ('给排水\管道附件\支吊架', 0, '数量', 'SL', 'N'),
  ('给排水\管道附件\支吊架', 1, '估算重量', 'GSZL', 'N*2.5'),
  ('给排水\管道附件\清扫口', 0, '数量', 'SL', 'N'),
  ('给排水\管道附件\检查口', 0, '数量', 'SL', 'N');

-- 电气\配电箱柜
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\配电箱柜\配电箱柜', 0, '数量', 'SL', 'N'),
  ('电气\配电箱柜\元件装置', 0, '数量', 'SL', 'N');

-- 电气\电缆桥架
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\电缆桥架\桥架', 0, '长度', 'CD', 'L'),
  ('电气\电缆桥架\桥架', 1, '防火涂料面积', 'TLMJ', 'S'),
  ('电气\电缆桥架\托盘', 0, '长度', 'CD', 'L'),
  ('电气\电缆桥架\托盘', 1, '防火涂料面积', 'TLMJ', 'S'),
  ('电气\电缆桥架\组合式桥架', 0, '长度', 'CD', 'L'),
  ('电气\电缆桥架\组合式桥架', 1, '防火涂料面积', 'TLMJ', 'S');

-- 电气\配管配线
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\配管配线\导线·导管', 0, '配管长度', 'PGCD', 'L'),
  ('电气\配管配线\导线·导管', 1, '配线长度', 'PXCD', 'L*N'),
  ('电气\配管配线\导线·导管', 2, '含预留配线长度', 'YLPX', '(L+1.5)*N'),
  ('电气\配管配线\线槽配线', 0, '线槽长度', 'XCCD', 'L'),
  ('电气\配管配线\线槽配线', 1, '配线长度', 'PXCD', 'L*N'),
  ('电气\配管配线\接线盒', 0, '数量', 'SL', 'N');

-- 电气\电缆
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\电缆\电力电缆', 0, '含预留长度', 'YLCD', 'L*1.025'),
  ('电气\电缆\电力电缆', 1, '长度', 'CD', 'L'),
  ('电气\电缆\控制电缆', 0, '含预留长度', 'YLCD', 'L*1.025'),
  ('电气\电缆\控制电缆', 1, '长度', 'CD', 'L'),
  ('电气\电缆\电缆头', 0, '数量', 'SL', 'N');

-- 电气\照明器具
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\照明器具\普通灯具', 0, '数量', 'SL', 'N'),
  ('电气\照明器具\荧光灯', 0, '数量', 'SL', 'N'),
  ('电气\照明器具\应急灯', 0, '数量', 'SL', 'N'),
  ('电气\照明器具\标志灯', 0, '数量', 'SL', 'N'),
  ('电气\照明器具\开关', 0, '数量', 'SL', 'N'),
  ('电气\照明器具\插座', 0, '数量', 'SL', 'N');

-- 电气\防雷接地
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\防雷接地\避雷网', 0, '含附加长度', 'FJCD', 'L*1.039'),
  ('电气\防雷接地\避雷网', 1, '长度', 'CD', 'L'),
  ('电气\防雷接地\引下线', 0, '含附加长度', 'FJCD', 'L*1.039'),
  ('电气\防雷接地\引下线', 1, '长度', 'CD', 'L'),
  ('电气\防雷接地\接地母线', 0, '含附加长度', 'FJCD', 'L*1.039'),
  ('电气\防雷接地\接地母线', 1, '长度', 'CD', 'L'),
  ('电气\防雷接地\接地极', 0, '数量', 'SL', 'N'),
  ('电气\防雷接地\等电位端子箱', 0, '数量', 'SL', 'N');

-- 电气\动力设备
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('电气\动力设备\电动机', 0, '数量', 'SL', 'N'),
  ('电气\动力设备\发电机', 0, '数量', 'SL', 'N');

-- 暖通\风管
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\风管\矩形风管', 0, '展开面积', 'ZKMJ', 'S'),
  ('暖通\风管\矩形风管', 1, '长度', 'CD', 'L'),
  ('暖通\风管\矩形风管', 2, '保温面积', 'BWMJ', 'S*1.08'),
  ('暖通\风管\矩形风管', 3, '风管保温体积', 'FGBW', 'S*0.03'),
  ('暖通\风管\圆形风管', 0, '展开面积', 'ZKMJ', 'S'),
  ('暖通\风管\圆形风管', 1, '长度', 'CD', 'L'),
  ('暖通\风管\圆形风管', 2, '保温面积', 'BWMJ', 'S*1.08'),
  ('暖通\风管\圆形风管', 3, '风管保温体积', 'FGBW', 'S*0.03'),
  ('暖通\风管\软风管', 0, '长度', 'CD', 'L'),
  ('暖通\风管\复合风管', 0, '展开面积', 'ZKMJ', 'S'),
  ('暖通\风管\复合风管', 1, '长度', 'CD', 'L'),
  ('暖通\风管\复合风管', 2, '保温面积', 'BWMJ', 'S*1.08'),
  ('暖通\风管\复合风管', 3, '风管保温体积', 'FGBW', 'S*0.03');

-- 暖通\风管部件
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\风管部件\风阀', 0, '数量', 'SL', 'N'),
  ('暖通\风管部件\风口', 0, '数量', 'SL', 'N'),
  ('暖通\风管部件\消声器', 0, '数量', 'SL', 'N'),
  ('暖通\风管部件\静压箱', 0, '数量', 'SL', 'N'),
  ('暖通\风管部件\静压箱', 1, '展开面积', 'ZKMJ', 'S'),
  ('暖通\风管部件\防火阀', 0, '数量', 'SL', 'N');

-- 暖通\通风空调设备
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\通风空调设备\风机', 0, '数量', 'SL', 'N'),
  ('暖通\通风空调设备\空调机组', 0, '数量', 'SL', 'N'),
  ('暖通\通风空调设备\风机盘管', 0, '数量', 'SL', 'N'),
  ('暖通\通风空调设备\多联机室内机', 0, '数量', 'SL', 'N'),
  ('暖通\通风空调设备\新风换气机', 0, '数量', 'SL', 'N');

-- 暖通\水管
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\水管\空调供水管', 0, '长度', 'CD', 'L'),
  ('暖通\水管\空调供水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('暖通\水管\空调供水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('暖通\水管\空调供水管', 3, '保温体积', 'BWTJ', 'L*0.0085'),
  ('暖通\水管\空调回水管', 0, '长度', 'CD', 'L'),
  ('暖通\水管\空调回水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('暖通\水管\空调回水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('暖通\水管\空调回水管', 3, '保温体积', 'BWTJ', 'L*0.0085'),
  ('暖通\水管\冷凝水管', 0, '长度', 'CD', 'L'),
  ('暖通\水管\冷凝水管', 1, '保温体积', 'BWTJ', 'L*0.0085'),
  ('暖通\水管\冷却水管', 0, '长度', 'CD', 'L'),
  ('暖通\水管\冷却水管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('暖通\水管\冷却水管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('暖通\水管\冷却水管', 3, '保温体积', 'BWTJ', 'L*0.0085'),
  ('暖通\水管\冷媒管', 0, '长度', 'CD', 'L'),
  ('暖通\水管\冷媒管', 1, '保温体积', 'BWTJ', 'L*0.0085');

-- 暖通\水管附件
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\水管附件\阀门', 0, '数量', 'SL', 'N'),
  ('暖通\水管附件\仪表', 0, '数量', 'SL', 'N'),
  ('暖通\水管附件\软接头', 0, '数量', 'SL', 'N');

-- 暖通\采暖
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('暖通\采暖\散热器', 0, '数量', 'SL', 'N'),
  ('暖通\采暖\地暖盘管', 0, '盘管长度', 'PCD', 'L'),
  ('暖通\采暖\地暖盘管', 1, '地面面积', 'DMMJ', 'S'),
  ('暖通\采暖\分集水器', 0, '数量', 'SL', 'N');

-- 消防\水灭火管道
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\水灭火管道\喷淋管', 0, '长度', 'CD', 'L'),
  ('消防\水灭火管道\喷淋管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('消防\水灭火管道\喷淋管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('消防\水灭火管道\消火栓管', 0, '长度', 'CD', 'L'),
  ('消防\水灭火管道\消火栓管', 1, '含损耗长度', 'SHCD', 'L*1.02'),
  ('消防\水灭火管道\消火栓管', 2, '刷油面积', 'SYMJ', 'L*0.133'),
  ('消防\水灭火管道\气体灭火管', 0, '长度', 'CD', 'L'),
  ('消防\水灭火管道\气体灭火管', 1, '刷油面积', 'SYMJ', 'L*0.133');

-- 消防\喷淋组件
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\喷淋组件\喷头', 0, '数量', 'SL', 'N'),
  ('消防\喷淋组件\水流指示器', 0, '数量', 'SL', 'N'),
  ('消防\喷淋组件\报警阀组', 0, '数量', 'SL', 'N'),
  ('消防\喷淋组件\末端试水装置', 0, '数量', 'SL', 'N');

-- 消防\消火栓
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\消火栓\室内消火栓', 0, '数量', 'SL', 'N'),
  ('消防\消火栓\室外消火栓', 0, '数量', 'SL', 'N'),
  ('消防\消火栓\消防水泵接合器', 0, '数量', 'SL', 'N'),
  ('消防\消火栓\灭火器', 0, '数量', 'SL', 'N');

-- 消防\消防阀门
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\消防阀门\信号阀', 0, '数量', 'SL', 'N'),
  ('消防\消防阀门\闸阀', 0, '数量', 'SL', 'N'),
  ('消防\消防阀门\止回阀', 0, '数量', 'SL', 'N');

-- 消防\火灾自动报警
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\火灾自动报警\点型探测器', 0, '数量', 'SL', 'N'),
  ('消防\火灾自动报警\手动报警按钮', 0, '数量', 'SL', 'N'),
  ('消防\火灾自动报警\声光报警器', 0, '数量', 'SL', 'N'),
  ('消防\火灾自动报警\消防模块', 0, '数量', 'SL', 'N'),
  ('消防\火灾自动报警\报警控制器', 0, '数量', 'SL', 'N');

-- 消防\消防管线
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('消防\消防管线\消防配管', 0, '长度', 'CD', 'L'),
  ('消防\消防管线\消防配线', 0, '配线长度', 'PXCD', 'L*N'),
  ('消防\消防管线\消防配线', 1, '长度', 'CD', 'L'),
  ('消防\消防管线\组合管线', 0, '配管长度', 'PGCD', 'L'),
  ('消防\消防管线\组合管线', 1, '配线长度', 'PXCD', 'L*N');

-- 弱电\箱柜
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\箱柜\机柜', 0, '数量', 'SL', 'N'),
  ('弱电\箱柜\分线箱', 0, '数量', 'SL', 'N');

-- 弱电\线槽桥架
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\线槽桥架\线槽', 0, '长度', 'CD', 'L'),
  ('弱电\线槽桥架\桥架', 0, '长度', 'CD', 'L');

-- 弱电\弱电管线
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\弱电管线\弱电配管配线', 0, '配管长度', 'PGCD', 'L'),
  ('弱电\弱电管线\弱电配管配线', 1, '配线长度', 'PXCD', 'L*N'),
  ('弱电\弱电管线\弱电配管配线', 2, '含预留配线长度', 'YLPX', '(L+1.5)*N'),
  ('弱电\弱电管线\组合管线', 0, '配管长度', 'PGCD', 'L'),
  ('弱电\弱电管线\组合管线', 1, '配线长度', 'PXCD', 'L*N'),
  ('弱电\弱电管线\组合管线', 2, '含预留配线长度', 'YLPX', '(L+1.5)*N'),
  ('弱电\弱电管线\光缆', 0, '含预留长度', 'YLCD', 'L*1.025'),
  ('弱电\弱电管线\光缆', 1, '长度', 'CD', 'L');

-- 弱电\综合布线
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\综合布线\信息插座', 0, '数量', 'SL', 'N'),
  ('弱电\综合布线\配线架', 0, '数量', 'SL', 'N'),
  ('弱电\综合布线\交换机', 0, '数量', 'SL', 'N');

-- 弱电\安防监控
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\安防监控\摄像机', 0, '数量', 'SL', 'N'),
  ('弱电\安防监控\门禁设备', 0, '数量', 'SL', 'N'),
  ('弱电\安防监控\硬盘录像机', 0, '数量', 'SL', 'N');

-- 弱电\广播电视
INSERT INTO calc_item (category, position, name, code, formula) VALUES
  ('弱电\广播电视\扬声器', 0, '数量', 'SL', 'N'),
  ('弱电\广播电视\电视插座', 0, '数量', 'SL', 'N'),
  ('弱电\广播电视\放大器', 0, '数量', 'SL', 'N');
