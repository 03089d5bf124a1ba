-- ieee14: group G1 (level 2), G1_OLD (level 1) and G1_ALT (not chosen) of scheme SCH.
-- Made by samples/network2sql from the network's JSON file.
DELETE FROM CDB_SBBAK;
INSERT INTO CDB_SBBAK(Base_Mva) VALUES
(100);
DELETE FROM CDB_ZONEBAK;
INSERT INTO CDB_ZONEBAK(id,Area_No,Zone_No) VALUES
(1,1,1);
DELETE FROM CDB_PSTATIONBAK;
INSERT INTO CDB_PSTATIONBAK(id,PS_Name,Zone_No) VALUES
(1,'S1',1),
(2,'S2',1),
(3,'S3',1),
(4,'S4',1),
(5,'S5',1),
(6,'S6',1),
(7,'S7',1),
(8,'S8',1),
(9,'S9',1),
(10,'S10',1),
(11,'S11',1),
(12,'S12',1),
(13,'S13',1),
(14,'S14',1);
DELETE FROM CDB_BUSBAK;
INSERT INTO CDB_BUSBAK(id,Bus_Name,PS_Name,Zone_No,Base_kV,Vmax_kV,Vmin_kV,SC1_MVA,SC3_MVA,HasNode) VALUES
(1,'B1','S1',1,0,0,0,0,0,1),
(2,'B2','S2',1,0,0,0,0,0,1),
(3,'B3','S3',1,0,0,0,0,0,1),
(4,'B4','S4',1,0,0,0,0,0,1),
(5,'B5','S5',1,0,0,0,0,0,1),
(6,'B6','S6',1,0,0,0,0,0,1),
(7,'B7','S7',1,0,0,0,0,0,1),
(8,'B8','S8',1,0,0,0,0,0,1),
(9,'B9','S9',1,0,0,0,0,0,1),
(10,'B10','S10',1,0,0,0,0,0,1),
(11,'B11','S11',1,0,0,0,0,0,1),
(12,'B12','S12',1,0,0,0,0,0,1),
(13,'B13','S13',1,0,0,0,0,0,1),
(14,'B14','S14',1,0,0,0,0,0,1);
DELETE FROM CDB_NODEBAK;
INSERT INTO CDB_NODEBAK(id,Node_Name,Bus_Name,ISPhyBus,Base_kV,PS_Name) VALUES
(1,'N1','B1',1,0,'S1'),
(2,'N2','B2',1,0,'S2'),
(3,'N3','B3',1,0,'S3'),
(4,'N4','B4',1,0,'S4'),
(5,'N5','B5',1,0,'S5'),
(6,'N6','B6',1,0,'S6'),
(7,'N7','B7',1,0,'S7'),
(8,'N8','B8',1,0,'S8'),
(9,'N9','B9',1,0,'S9'),
(10,'N10','B10',1,0,'S10'),
(11,'N11','B11',1,0,'S11'),
(12,'N12','B12',1,0,'S12'),
(13,'N13','B13',1,0,'S13'),
(14,'N14','B14',1,0,'S14'),
(15,'N1G','B1',0,0,'S1'),
(16,'N2G','B2',0,0,'S2'),
(17,'N3G','B3',0,0,'S3'),
(18,'N4G','B6',0,0,'S6'),
(19,'N5G','B8',0,0,'S8');
DELETE FROM CDB_ACLINEBAK;
INSERT INTO CDB_ACLINEBAK(ID,GrpName,ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break,Unit,R1,X1,B1_Half,R0,X0,B0_Half,Owner,Rate_Ka,Up_Limit,Length_Km,Type,R1_Ohm,X1_Ohm,B1_Siem,R0_Ohm,X0_Ohm,B0_Siem,Mode_Ctrl,Par_No,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Phypno) VALUES
(1,'G1','L1',1,'N1','N2',1,1,1,1,0.01938,0.05917,0.0264,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(2,'G1','L2',1,'N1','N5',1,1,1,1,0.05403,0.22304,0.0246,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(3,'G1','L3',1,'N2','N3',1,1,1,1,0.04699,0.19797,0.0219,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(4,'G1','L4',1,'N2','N4',1,1,1,1,0.05811,0.17632,0.017,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(5,'G1','L5',1,'N2','N5',1,1,1,1,0.05695,0.17388,0.0173,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(6,'G1_ALT','L5',1,'N2','N5',1,1,1,1,0.17085,0.17388,0.0173,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(7,'G1','L6',1,'N3','N4',1,1,1,1,0.06701,0.17103,0.0064,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(8,'G1','L7',1,'N4','N5',1,1,1,1,0.01335,0.04211,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(9,'G1','L11',1,'N6','N11',1,1,1,1,0.09498,0.1989,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(10,'G1','L12',1,'N6','N12',1,1,1,1,0.12291,0.25581,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(11,'G1','L13',1,'N6','N13',1,1,1,1,0.06615,0.13027,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(12,'G1','L14',1,'N7','N8',1,1,1,1,0,0.17615,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(13,'G1','L15',1,'N7','N9',1,1,1,1,0,0.11001,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(14,'G1_ALT','L15',1,'N7','N9',1,1,1,1,0,0.11001,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(15,'G1','L16',1,'N9','N10',1,1,1,1,0.03181,0.0845,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(16,'G1','L17',1,'N9','N14',1,1,1,1,0.12711,0.27038,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(17,'G1','L18',1,'N10','N11',1,1,1,1,0.08205,0.19207,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(18,'G1','L19',1,'N12','N13',1,1,1,1,0.22092,0.19988,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(19,'G1','L20',1,'N13','N14',1,1,1,1,0.17093,0.34802,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(20,'G1_OLD','L20',1,'N13','N14',1,1,1,1,0.34186,0.34802,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0),
(21,'G1_ALT','L20',1,'N13','N14',1,1,1,1,0.51279,0.34802,0,0,0,0,1,0,0,0,'',0,0,0,0,0,0,0,0,'',0,0,0);
DELETE FROM CDB_TRANS_2WBAK;
INSERT INTO CDB_TRANS_2WBAK(ID,GrpName,ID_Name,PhyPos,Valid,I_Name,J_Name,ID_No,I_Conn,J_Conn,Unit,R1,X1,Gm,Bm,Tk,Rate_MVA,Up_Limit,Mode_Ctrl,Par_No,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Dps_KW,Vs_Perc,Dp0_KW,I0_Perc,TapMax1,TapMin1,P0_Tap1,Vstep_Tap1,V0_Tap1,Vpos_Tap1,TapMax2,TapMin2,P0_Tap2,Vstep_Tap2,V0_Tap2,Vpos_Tap2,Zero_Conn,R0,X0,Phypno) VALUES
(1,'G1','T8',0,1,'N4','N7',1,0,0,1,0,0.20912,0,0,0.978,0,0,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,'',0,0,0),
(2,'G1','T9',0,1,'N4','N9',1,0,0,1,0,0.55618,0,0,0.969,0,0,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,'',0,0,0),
(3,'G1','T10',0,1,'N5','N6',1,0,0,1,0,0.25202,0,0,0.932,0,0,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,'',0,0,0);
DELETE FROM CDB_SHIFTBAK;
DELETE FROM CDB_GENERATBAK;
INSERT INTO CDB_GENERATBAK(ID,GrpName,ID_Name,PhyPos,Valid,Node_Name,Mode_Ctrl,Unit,Pg,Qg,V0,Angle,Qmax,Qmin,Pmax,Pmin,Par_Group,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Gen_Model,Gen_Par,AVR_Model,AVR_Par,GOV_Model,GOV_Par,PSS_Model,PSS_Par,Rate_MVA,Rate_MW,Xdp,Xdpp,X2,Tj) VALUES
(1,'G1','G1',0,1,'N1G',2,1,2.324,-0.169,1.06,0,0.1,0,3.324,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0),
(2,'G1','G2',0,1,'N2G',1,1,0.4,0.424,1.045,0,0.5,-0.4,1.4,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0),
(3,'G1','G3',0,1,'N3G',1,1,0,0.234,1.01,0,0.4,0,1,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0),
(4,'G1','G4',0,1,'N4G',1,1,0,0.122,1.07,0,0.24,-0.06,1,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0),
(5,'G1','G5',0,1,'N5G',1,1,0,0.174,1.09,0,0.24,-0.06,1,0,0,'',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0);
DELETE FROM CDB_LOADBAK;
INSERT INTO CDB_LOADBAK(ID,GrpName,ID_Name,PhyPos,Valid,Node_Name,No_Load,Mode_Ctrl,Unit,Pl,Ql,V0,Angle,Qmax,Qmin,Pmax,Pmin,Par_Group,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Load_Model,Load_Par,Z_Percent) VALUES
(1,'G1','D2',0,1,'N2',1,0,1,0.217,0.127,1,0,0,0,0,0,0,'',0,0,0,0,0),
(2,'G1','D3',0,1,'N3',1,0,1,0.942,0.19,1,0,0,0,0,0,0,'',0,0,0,0,0),
(3,'G1','D4',0,1,'N4',1,0,1,0.478,-0.039,1,0,0,0,0,0,0,'',0,0,0,0,0),
(4,'G1','D5',0,1,'N5',1,0,1,0.076,0.016,1,0,0,0,0,0,0,'',0,0,0,0,0),
(5,'G1','D6',0,1,'N6',1,0,1,0.112,0.075,1,0,0,0,0,0,0,'',0,0,0,0,0),
(6,'G1','D9',0,1,'N9',1,0,1,0.295,0.166,1,0,0,0,0,0,0,'',0,0,0,0,0),
(7,'G1','D10',0,1,'N10',1,0,1,0.09,0.058,1,0,0,0,0,0,0,'',0,0,0,0,0),
(8,'G1','D11',0,1,'N11',1,0,1,0.035,0.018,1,0,0,0,0,0,0,'',0,0,0,0,0),
(9,'G1','D12',0,1,'N12',1,0,1,0.061,0.016,1,0,0,0,0,0,0,'',0,0,0,0,0),
(10,'G1','D13',0,1,'N13',1,0,1,0.135,0.058,1,0,0,0,0,0,0,'',0,0,0,0,0),
(11,'G1','D14',0,1,'N14',1,0,1,0.149,0.05,1,0,0,0,0,0,0,'',0,0,0,0,0);
DELETE FROM CDB_PCAPREABAK;
INSERT INTO CDB_PCAPREABAK(ID,GrpName,ID_Name,Valid,Node_Name,Bus_Name,ID_No,Unit,R1,X1,R0,X0,Type,Mode_Ctrl,Par_No,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Phypno,Rate_Capa,Rate_V0) VALUES
(1,'G1','C9',1,'N9','',1,1,0,-5.26315789474,0,0,'',0,0,'',0,0,0,0,0);
DELETE FROM CDB_BREAKERBAK;
INSERT INTO CDB_BREAKERBAK(ID,GrpName,ID_Name,PhyPos,Valid,Lbreak,I_Name,J_Name,ID_No) VALUES
(1,'G1','K1',0,1,1,'N1','N1G',1),
(2,'G1','K2',0,1,1,'N2','N2G',1),
(3,'G1','K3',0,1,1,'N3','N3G',1),
(4,'G1','K4',0,1,1,'N6','N4G',1),
(5,'G1','K5',0,1,1,'N8','N5G',1);
DELETE FROM CDB_ISOSWITCHBAK;
INSERT INTO CDB_ISOSWITCHBAK(ID,GrpName,ID_Name,PhyPos,Valid,Lbreak,I_Name,J_Name,ID_No) VALUES
(1,'G1','Q1',0,1,1,'N1','N1G',1),
(2,'G1','Q2',0,1,1,'N2','N2G',1),
(3,'G1','Q3',0,1,1,'N3','N3G',1),
(4,'G1','Q4',0,1,1,'N6','N4G',1),
(5,'G1','Q5',0,1,1,'N8','N5G',1);
DELETE FROM CDB_DATAGROUPBAK;
INSERT INTO CDB_DATAGROUPBAK(id,GrpName) VALUES
(1,'G1'),
(2,'G1_OLD'),
(3,'G1_ALT');
DELETE FROM CDB_SCHEMEINFBAK;
INSERT INTO CDB_SCHEMEINFBAK(ID,SchName) VALUES
(1,'SCH');
DELETE FROM CDB_SCHEMECONTBAK;
INSERT INTO CDB_SCHEMECONTBAK(IDSch,GrpName,Nlever) VALUES
(1,'G1',2),
(1,'G1_OLD',1);
